// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

/// Makes one request for memory of the calling thread fail, as it would where there is none: the operator
/// `new` throws std::bad_alloc. While it lives no other may.
class FailingMemory
{
public:
    /// The request with this number fails, counted from 1.
    explicit FailingMemory(int request);
    ~FailingMemory();
    FailingMemory(const FailingMemory&) = delete;
    FailingMemory& operator=(const FailingMemory&) = delete;

    /// There were enough requests for one to fail.
    bool hasFailed() const;
};
