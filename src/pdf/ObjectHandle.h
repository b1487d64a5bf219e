// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/Engine.h"

#include <mupdf/pdf.h>

#include <utility>

namespace pdf {

/// Keeps an object of MuPDF alive. To be made and destroyed under the lock of the object's document.
class ObjectHandle
{
public:
    ObjectHandle() = default;
    /// Takes over a reference.
    explicit ObjectHandle(pdf_obj* object)
        : m_object(object)
    {}
    ~ObjectHandle() { pdf_drop_obj(engine::context(), m_object); }
    ObjectHandle(ObjectHandle&& other) noexcept
        : m_object(std::exchange(other.m_object, nullptr))
    {}
    ObjectHandle& operator=(ObjectHandle&& other) noexcept
    {
        std::swap(m_object, other.m_object);
        return *this;
    }

    pdf_obj* get() const { return m_object; }

private:
    pdf_obj* m_object = nullptr;
};

} // namespace pdf
