// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QRectF>
#include <QUrl>

#include <optional>
#include <variant>

namespace pdf {

/// A place in the document that a link leads to.
struct PDFDestination
{
    /// Zero-based; a page of the document.
    int page = 0;
    /// What is to be at the left and at the top, in the page's space; absent where it does not matter.
    std::optional<double> left;
    std::optional<double> top;
    /// The scale to show it at, 1.0 being 100 %; absent where it is to stay.
    std::optional<double> zoom;

    friend bool operator==(const PDFDestination&, const PDFDestination&) = default;
};

/// An area of a page that leads somewhere when it is clicked.
struct PDFLink
{
    /// In page space.
    QRectF bounds;

    /// Inert (monostate) when the link would do anything but go to a page of the document or open a web page
    /// or a letter: start a program, run a script, open another file, play a film.
    std::variant<std::monostate, PDFDestination, QUrl> target;
};

/// The address of a link as its document has it, made absolute; absent unless it is an address of the web
/// (http, https) or of somebody's mail (mailto) that is written as such. A letter that would attach files is
/// refused, too.
std::optional<QUrl> linkAddress(const QByteArray& address, const QByteArray& base = {});

} // namespace pdf
