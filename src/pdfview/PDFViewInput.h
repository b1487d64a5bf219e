// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

class QKeyEvent;
class QNativeGestureEvent;
class QWheelEvent;

namespace pdf {

class PDFView;

/// What wheel, keys and touchpad gestures mean to a page view.
class PDFViewInput
{
public:
    explicit PDFViewInput(PDFView& view);

    // True when the event was meant for the view.
    bool wheel(const QWheelEvent& event);
    bool keyPress(const QKeyEvent& event);
    bool gesture(const QNativeGestureEvent& event);

private:
    PDFView& m_view;
};

} // namespace pdf
