// SPDX-License-Identifier: AGPL-3.0-or-later
#include "cli/MemoryLimit.h"

#include "cli/Progress.h"
#include "cli/SafeText.h"

#include <sys/resource.h>

#include <array>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <new>

namespace quillo::cli {
namespace {

// Of writable memory; the program's own code and the file's cache are not counted.
constexpr std::size_t maximumBytes = std::size_t{1400} << 20;

// UTF-8, kept where it can be printed without any more memory.
std::array<char, 512> inputName = {};

[[noreturn]] void endOutOfMemory()
{
    try {
        std::rethrow_exception(std::current_exception());
    } catch (const std::bad_alloc&) {
        Progress::eraseCurrent();
        std::fprintf(
            stderr, "quillo-cli: %s: it needs more memory than one file may use\n", inputName.data());
        std::_Exit(1);
    } catch (...) {
        std::abort();
    }
}

} // namespace

void limitMemory()
{
    std::set_terminate(endOutOfMemory);
// A sanitizer keeps books of its own that are larger than any limit.
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
    rlimit limit = {};
    if (getrlimit(RLIMIT_DATA, &limit) != 0)
        return;
    limit.rlim_cur =
        limit.rlim_max == RLIM_INFINITY || limit.rlim_max > maximumBytes ? maximumBytes : limit.rlim_max;
    setrlimit(RLIMIT_DATA, &limit);
#endif
}

void nameInputForMemoryLimit(const QString& name)
{
    const QByteArray bytes = safeName(name).toUtf8();
    std::snprintf(inputName.data(), inputName.size(), "%s", bytes.constData());
}

} // namespace quillo::cli
