#include "host/render/parallel_rows.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

namespace tavrik_host {

void InParallel(int count, int threads, const std::function<void(double)>& done, const std::function<void(int)>& work,
                const std::atomic<bool>* stop) {
    if (threads <= 0) threads = int(std::max(1u, std::thread::hardware_concurrency()));
    std::atomic<int> next{0};
    std::exception_ptr fault;
    std::mutex faultLock;
    const auto run = [&](const std::function<void(double)>& tell) {
        try {
            for (int i = next++; i < count; i = next++) {
                if (stop != nullptr && *stop) return;
                work(i);
                if (tell) tell(double(i + 1) / double(count));
            }
        } catch (...) {
            const std::lock_guard<std::mutex> lock(faultLock);
            if (!fault) fault = std::current_exception();
            next = count;
        }
    };
    std::vector<std::thread> helpers;
    for (int i = 1; i < std::min(threads, count); ++i) {
        try {
            helpers.emplace_back(run, nullptr);
        } catch (const std::system_error&) {
            break;  // as many as the machine gives
        }
    }
    run(done);
    for (std::thread& helper : helpers) helper.join();
    if (fault) std::rethrow_exception(fault);
}

}  // namespace tavrik_host
