#pragma once

#include <atomic>
#include <cstdint>
#include <string_view>

namespace qf {

// A data connection held for the program's downloads. Handsets had to bring up their cellular link
// before fetching; a Linux machine is online or not, so here establishing always succeeds and the
// calls only keep the bookkeeping (who established the link, who releases it) where it has always
// been.
using ConnectionHandle = uint32_t;
inline constexpr ConnectionHandle kNoConnection = 0;

// True while `handle` names a connection that was established and not yet released.
bool IsConnected(ConnectionHandle handle);

// Brings up a connection suitable for `url` (empty: any) and stores its handle in `*handle`.
// False when `handle` is null.
bool EstablishConnection(std::u16string_view url, std::atomic<ConnectionHandle>* handle);

// Releases the connection in `*handle` and clears it. False when there is none, or when the
// handle was already released elsewhere (it is cleared all the same).
bool ReleaseConnection(std::atomic<ConnectionHandle>* handle);

// The one connection shared by every download of the process. Workers read and replace it without
// further coordination: at worst two of them establish a connection each.
std::atomic<ConnectionHandle>& ProcessConnectionHandle();

} // namespace qf
