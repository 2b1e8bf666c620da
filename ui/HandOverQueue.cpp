#include "ui/HandOverQueue.h"

#include <utility>

namespace qf::ui {

void HandOverQueue::Post(std::function<void()> work) {
    {
        const std::lock_guard lock(mutex_);
        pending_.push_back(std::move(work));
    }
    wake_();
}

void HandOverQueue::RunNext() {
    std::function<void()> work;
    {
        const std::lock_guard lock(mutex_);
        if (pending_.empty()) {
            return;
        }
        work = std::move(pending_.front());
        pending_.pop_front();
    }
    if (work) {
        work();
    }
}

} // namespace qf::ui
