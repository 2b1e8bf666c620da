#pragma once

namespace qf {

inline constexpr char kProductName[] = "Quillfeed";
inline constexpr char kProductVersion[] = "2.0.2";
// How the program names itself to web servers.
inline constexpr char kUserAgent[] = "Quillfeed/2.0.2";

} // namespace qf
