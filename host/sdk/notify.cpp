#include "host/sdk/notify.h"

#include <algorithm>

namespace {

struct Registration {
    NOTIFYPROC proc;
    void* param;
    int code;
    bool operator==(const Registration&) const = default;
};

/// Never destroyed: libraries take themselves off as late as they like.
std::vector<Registration>& Registrations() {
    static auto* const registrations = new std::vector<Registration>;
    return *registrations;
}

bool IsRegistered(const Registration& wanted) {
    return std::find(Registrations().begin(), Registrations().end(), wanted) != Registrations().end();
}

}  // namespace

/// A second registration of the same three changes nothing.
int RegisterNotification(NOTIFYPROC proc, void* param, int code) {
    if (proc == nullptr) return 0;
    const Registration wanted{proc, param, code};
    if (!IsRegistered(wanted)) Registrations().push_back(wanted);
    return 1;
}

int UnRegisterNotification(NOTIFYPROC proc, void* param, int code) {
    return std::erase(Registrations(), Registration{proc, param, code}) > 0 ? 1 : 0;
}

void BroadcastNotification(int code, void* callParam) {
    const std::vector<Registration> told = Registrations();  // they may come and go meanwhile
    for (const Registration& registration : told) {
        if (registration.code != code || !IsRegistered(registration)) continue;
        NotifyInfo info{code, callParam};
        registration.proc(registration.param, &info);
    }
}
