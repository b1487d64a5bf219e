// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <cstdint>
#include <memory>

struct xcb_connection_t;

namespace quillo::benchmark {

/// The X display named by DISPLAY, seen from outside: what is on it, whoever painted it.
class Screen
{
public:
    /// Throws std::runtime_error when there is no display.
    Screen();
    ~Screen();
    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;

    /// True when a few of the screen's rows hold a run of at least 100 pixels of about the colour (0xRRGGBB).
    bool shows(std::uint32_t colour) const;

private:
    xcb_connection_t* m_connection;
    std::uint32_t m_root = 0;
    std::uint16_t m_width = 0;
    std::uint16_t m_height = 0;
};

} // namespace quillo::benchmark
