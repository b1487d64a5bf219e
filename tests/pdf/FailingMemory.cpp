// SPDX-License-Identifier: AGPL-3.0-or-later
#include "FailingMemory.h"

#include <cstdlib>
#include <new>

namespace {

/// Requests up to the one that fails; zero when none does.
thread_local int requestsLeft = 0;

} // namespace

// All of the program's memory comes through here, that of Qt included.
void* operator new(std::size_t size)
{
    if (requestsLeft > 0 && --requestsLeft == 0)
        throw std::bad_alloc();
    if (void* block = std::malloc(size > 0 ? size : 1))
        return block;
    throw std::bad_alloc();
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    if (requestsLeft > 0 && --requestsLeft == 0)
        return nullptr;
    return std::malloc(size > 0 ? size : 1);
}

void operator delete(void* block) noexcept
{
    std::free(block);
}

void operator delete(void* block, std::size_t) noexcept
{
    std::free(block);
}

FailingMemory::FailingMemory(int request)
{
    requestsLeft = request;
}

FailingMemory::~FailingMemory()
{
    requestsLeft = 0;
}

bool FailingMemory::hasFailed() const
{
    return requestsLeft == 0;
}
