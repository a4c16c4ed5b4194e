#pragma once

// PROXY headers of version 2, as a proxy writes them.

#include <string>

namespace orvo::web {

inline std::string two_octets(std::size_t number) {
    return {static_cast<char>(number >> 8), static_cast<char>(number & 0xFF)};
}

// command: 0x20 for a connection of the proxy's own, 0x21 for one that it passes on; family: 0x11
// for v4_ends, 0x21 for v6_ends.
inline std::string proxy_octets(int command, int family, const std::string& rest) {
    return std::string("\r\n\r\n\0\r\nQUIT\n", 12) + static_cast<char>(command) +
           static_cast<char>(family) + two_octets(rest.size()) + rest;
}

// What may follow the ends.
inline std::string proxy_part(int type, const std::string& value) {
    return static_cast<char>(type) + two_octets(value.size()) + value;
}

// From 192.0.2.7, port 4711, to 10.0.0.1, port 443.
inline const std::string v4_ends("\xC0\x00\x02\x07\x0A\x00\x00\x01\x12\x67\x01\xBB", 12);
// From 2001:db8::7, port 4711, to ::1, port 443.
inline const std::string v6_ends(
    "\x20\x01\x0d\xb8\0\0\0\0\0\0\0\0\0\0\0\x07"
    "\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\x01"
    "\x12\x67\x01\xBB",
    36);

}  // namespace orvo::web
