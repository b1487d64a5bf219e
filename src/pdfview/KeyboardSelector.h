// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include "pdf/TextRange.h"
#include "pdfview/TextWalk.h"

#include <QObject>
#include <QPointF>

#include <deque>
#include <optional>

class QKeyEvent;

namespace pdf {

class PDFView;
class PageReader;
class TextLayer;
class TextRevealer;
class TextSelector;

/// Extends the selection of a view with the keyboard, as in a text that is being written: from its moving
/// end, or from where the user has clicked into the text, or from the first text that is visible. Keys that
/// need a page that is not read yet wait for it, in their order. Main thread.
class KeyboardSelector : public QObject
{
    Q_OBJECT

public:
    KeyboardSelector(PDFView& view, PageReader& reader, TextSelector& selector, TextRevealer& revealer);

    /// True when the key was meant for the selection.
    bool keyPress(const QKeyEvent& event);

private:
    /// Between the page that a move has left and the one where it arrives.
    struct Passage
    {
        int page = 0;
        bool isForward = true;
    };

    void forget();
    void proceed();
    // False while a page is not read.
    bool begin();
    bool perform(TextMove move);
    bool pass(TextMove move, TextPosition from);
    bool isRead(int page);
    /// Null for a page without characters.
    const TextLayer* text(int page) const;
    /// Or about to be.
    bool isVisible(TextPosition place) const;
    std::optional<TextPosition> firstVisible(int page) const;
    void extendTo(TextPosition place);

    PDFView& m_view;
    PageReader& m_reader;
    TextSelector& m_selector;
    TextRevealer& m_revealer;
    std::deque<TextMove> m_moves;
    std::optional<Passage> m_passage;
    /// Where steps by line aim at, so that short lines on the way do not matter.
    std::optional<QPointF> m_goal;
    bool m_isExtending = false;
};

} // namespace pdf
