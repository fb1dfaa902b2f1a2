#include <gtest/gtest.h>

#include "host/sdk/max.h"

namespace {

struct Listener {
    int calls = 0;
    void* lastParam = nullptr;
    Listener* sendAway = nullptr;
};

void Listen(void* param, NotifyInfo* info) {
    auto& listener = *static_cast<Listener*>(param);
    EXPECT_EQ(info->intcode, NOTIFY_PRE_RENDER);
    ++listener.calls;
    listener.lastParam = info->callParam;
    if (listener.sendAway != nullptr) UnRegisterNotification(Listen, listener.sendAway, NOTIFY_PRE_RENDER);
}

TEST(HostNotifications, ReachThoseWhoRegisteredForTheCode) {
    Listener listener;
    int parameter = 0;
    EXPECT_NE(RegisterNotification(Listen, &listener, NOTIFY_PRE_RENDER), 0);
    BroadcastNotification(NOTIFY_POST_RENDER);
    EXPECT_EQ(listener.calls, 0);
    BroadcastNotification(NOTIFY_PRE_RENDER, &parameter);
    EXPECT_EQ(listener.calls, 1);
    EXPECT_EQ(listener.lastParam, &parameter);
    EXPECT_NE(UnRegisterNotification(Listen, &listener, NOTIFY_PRE_RENDER), 0);
    BroadcastNotification(NOTIFY_PRE_RENDER);
    EXPECT_EQ(listener.calls, 1);
}

TEST(HostNotifications, SecondRegistrationOfTheSameChangesNothing) {
    Listener listener;
    RegisterNotification(Listen, &listener, NOTIFY_PRE_RENDER);
    RegisterNotification(Listen, &listener, NOTIFY_PRE_RENDER);
    BroadcastNotification(NOTIFY_PRE_RENDER);
    EXPECT_EQ(listener.calls, 1);
    UnRegisterNotification(Listen, &listener, NOTIFY_PRE_RENDER);
    EXPECT_EQ(UnRegisterNotification(Listen, &listener, NOTIFY_PRE_RENDER), 0);
}

TEST(HostNotifications, ListenerThatIsSentAwayMeanwhileIsNotCalled) {
    Listener first, second;
    first.sendAway = &second;
    RegisterNotification(Listen, &first, NOTIFY_PRE_RENDER);
    RegisterNotification(Listen, &second, NOTIFY_PRE_RENDER);
    BroadcastNotification(NOTIFY_PRE_RENDER);
    EXPECT_EQ(second.calls, 0);
    UnRegisterNotification(Listen, &first, NOTIFY_PRE_RENDER);
}

}  // namespace
