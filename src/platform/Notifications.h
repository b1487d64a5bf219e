// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <QString>

/// The names of the notifications that travel through the default notification centre, and what their object
/// is. A name without an observer is posted all the same and has no effect.
namespace quillo::Notifications {

/// Object: the file's QUrl.
inline const QString openPDFDocument = QStringLiteral("openPDFDocument");

/// No object; posted by the View menu.
inline const QString zoomIn = QStringLiteral("zoomIn");
inline const QString zoomOut = QStringLiteral("zoomOut");
inline const QString zoomToFit = QStringLiteral("zoomToFit");

/// Object: the zero-based page number (qint64); posted by result rows.
inline const QString jumpToPage = QStringLiteral("jumpToPage");

/// Object: the signature's QImage.
inline const QString placeSignature = QStringLiteral("placeSignature");
/// Object: the text (QString).
inline const QString placeFullName = QStringLiteral("placeFullName");
inline const QString placeInitials = QStringLiteral("placeInitials");
inline const QString placeDate = QStringLiteral("placeDate");
/// No object.
inline const QString placeFreeText = QStringLiteral("placeFreeText");

} // namespace quillo::Notifications
