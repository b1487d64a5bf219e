// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <gtest/gtest.h>

#include <csignal>
#include <sys/resource.h>
#include <unistd.h>

// What can be in the way of writing a file.
namespace pdf {

/// For as long as it lives no file of this process grows beyond the size, as on a disk that is full.
class FullDisk
{
public:
    explicit FullDisk(rlim_t size)
        : m_handler(std::signal(SIGXFSZ, SIG_IGN))
    {
        EXPECT_EQ(::getrlimit(RLIMIT_FSIZE, &m_before), 0);
        const rlimit limit = {size, m_before.rlim_max};
        EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &limit), 0);
    }
    ~FullDisk()
    {
        ::setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_handler);
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

private:
    void (*m_handler)(int);
    rlimit m_before = {};
};

/// The superuser may write everywhere; for as long as this lives the process is somebody else.
class OrdinaryUser
{
public:
    static constexpr uid_t nobody = 65534;

    OrdinaryUser()
        : m_wasSuperuser(::geteuid() == 0)
    {
        if (m_wasSuperuser) {
            EXPECT_EQ(::seteuid(nobody), 0);
        }
    }
    ~OrdinaryUser()
    {
        if (m_wasSuperuser) {
            EXPECT_EQ(::seteuid(0), 0);
        }
    }
    OrdinaryUser(const OrdinaryUser&) = delete;
    OrdinaryUser& operator=(const OrdinaryUser&) = delete;

private:
    const bool m_wasSuperuser;
};

} // namespace pdf
