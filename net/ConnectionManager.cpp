#include "net/ConnectionManager.h"

#include <mutex>
#include <set>

namespace qf {

namespace {

// The connections that are up, as the platform's connection manager would track them.
class ConnectionTable {
public:
    ConnectionHandle Open() {
        std::lock_guard lock(mutex_);
        const ConnectionHandle handle = ++lastHandle_;
        open_.insert(handle);
        return handle;
    }

    bool IsOpen(ConnectionHandle handle) {
        std::lock_guard lock(mutex_);
        return open_.contains(handle);
    }

    bool Close(ConnectionHandle handle) {
        std::lock_guard lock(mutex_);
        return open_.erase(handle) > 0;
    }

private:
    std::mutex mutex_;
    std::set<ConnectionHandle> open_;
    ConnectionHandle lastHandle_ = kNoConnection;
};

ConnectionTable& Table() {
    static ConnectionTable table;
    return table;
}

} // namespace

bool IsConnected(ConnectionHandle handle) {
    return handle != kNoConnection && Table().IsOpen(handle);
}

bool EstablishConnection(std::u16string_view /*url*/, std::atomic<ConnectionHandle>* handle) {
    if (handle == nullptr) {
        return false;
    }
    handle->store(Table().Open());
    return true;
}

bool ReleaseConnection(std::atomic<ConnectionHandle>* handle) {
    if (handle == nullptr) {
        return false;
    }
    const ConnectionHandle released = handle->exchange(kNoConnection);
    return released != kNoConnection && Table().Close(released);
}

std::atomic<ConnectionHandle>& ProcessConnectionHandle() {
    static std::atomic<ConnectionHandle> handle{kNoConnection};
    return handle;
}

} // namespace qf
