// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/PDFLink.h"
#include "pdf/PDFDocument.h"
#include "pdf/PDFPage.h"
#include "support/PDFWriter.h"
#include "support/Printing.h"

#include <gtest/gtest.h>

namespace pdf {
namespace {

/// The links of a page with these link annotations, the first of three pages. Objects 4, 6 and 8 are the
/// contents, 5, 7 and 9 the pages.
std::vector<PDFLink> linksOf(const std::vector<QByteArray>& entries, const QByteArray& catalog = {})
{
    PDFWriter writer;
    QByteArray annotations;
    for (const QByteArray& entry : entries)
        annotations += "<</Type/Annot/Subtype/Link/Rect[100 200 150 212]" + entry + ">>";
    writer.addPage("", "/Annots[" + annotations + "]");
    writer.addPage("");
    writer.addPage("");
    writer.setCatalog(catalog);
    const TestFolder folder;
    const auto document = PDFDocument::open(folder.write(QStringLiteral("links.pdf"), writer.bytes()));
    return document ? (*document)->page(0)->links() : std::vector<PDFLink>();
}

PDFLink linkWith(const QByteArray& entries, const QByteArray& catalog = {})
{
    const auto links = linksOf({entries}, catalog);
    EXPECT_EQ(links.size(), 1U);
    return links.empty() ? PDFLink() : links.front();
}

std::optional<PDFDestination> destination(const QByteArray& entries, const QByteArray& catalog = {})
{
    const PDFLink link = linkWith(entries, catalog);
    const auto* target = std::get_if<PDFDestination>(&link.target);
    return target ? std::optional(*target) : std::nullopt;
}

QString address(const QByteArray& text, const QByteArray& catalog = {})
{
    const PDFLink link = linkWith("/A<</S/URI/URI(" + text + ")>>", catalog);
    const auto* url = std::get_if<QUrl>(&link.target);
    return url ? url->toString(QUrl::FullyEncoded) : QStringLiteral("(inert)");
}

bool isInert(const QByteArray& entries)
{
    return std::holds_alternative<std::monostate>(linkWith(entries).target);
}

TEST(PDFLinkTest, HasItsBoundsInPageSpace)
{
    EXPECT_EQ(linkWith("").bounds, QRectF(100, 200, 50, 12));
}

TEST(PDFLinkTest, LeadsToAPlaceOnAPage)
{
    EXPECT_EQ(destination("/Dest[7 0 R/XYZ 72 700 1.5]"), (PDFDestination{1, 72.0, 700.0, 1.5}));
    EXPECT_EQ(
        destination("/A<</S/GoTo/D[9 0 R/XYZ null 700 0]>>"),
        (PDFDestination{2, std::nullopt, 700.0, std::nullopt}));
    EXPECT_EQ(destination("/Dest[5 0 R/FitH 300]"), (PDFDestination{0, std::nullopt, 300.0, std::nullopt}));
    EXPECT_EQ(destination("/Dest[5 0 R/FitR 10 20 30 40]"), (PDFDestination{0, 10.0, 40.0, std::nullopt}));
    EXPECT_EQ(destination("/Dest[9 0 R/Fit]"), (PDFDestination{2, {}, {}, {}}));
}

TEST(PDFLinkTest, LeadsToANumberedPage)
{
    EXPECT_EQ(destination("/Dest[2/Fit]"), (PDFDestination{2, {}, {}, {}}));
    EXPECT_TRUE(isInert("/Dest[3/Fit]"));
    EXPECT_TRUE(isInert("/Dest[-1/Fit]"));
}

TEST(PDFLinkTest, LeadsToANamedPlace)
{
    EXPECT_EQ(
        destination("/Dest(chapter)", "/Names<</Dests<</Names[(chapter)[7 0 R/XYZ 1 2 0]]>>>>"),
        (PDFDestination{1, 1.0, 2.0, {}}));
    EXPECT_EQ(
        destination("/Dest/chapter", "/Dests<</chapter<</D[9 0 R/Fit]>>>>"), (PDFDestination{2, {}, {}, {}}));
    EXPECT_TRUE(isInert("/Dest(nowhere)"));
}

TEST(PDFLinkTest, LeadsToNeighbouringPagesByName)
{
    EXPECT_EQ(destination("/A<</S/Named/N/NextPage>>"), (PDFDestination{1, {}, {}, {}}));
    EXPECT_EQ(destination("/A<</S/Named/N/PrevPage>>"), (PDFDestination{0, {}, {}, {}}));
    EXPECT_EQ(destination("/A<</S/Named/N/LastPage>>"), (PDFDestination{2, {}, {}, {}}));
    EXPECT_TRUE(isInert("/A<</S/Named/N/Print>>"));
}

TEST(PDFLinkTest, IsInertWhenItsPageIsNone)
{
    EXPECT_TRUE(isInert("/Dest[3 0 R/Fit]"));
    EXPECT_TRUE(isInert("/Dest[999 0 R/Fit]"));
    EXPECT_TRUE(isInert("/Dest[]"));
    EXPECT_TRUE(isInert(""));
}

TEST(PDFLinkTest, OpensWebPagesAndLetters)
{
    EXPECT_EQ(address("https://example.com/a?b=c#d"), QStringLiteral("https://example.com/a?b=c#d"));
    EXPECT_EQ(address(" HTTP://Example.com "), QStringLiteral("http://example.com"));
    EXPECT_EQ(
        address("mailto:a@example.com?subject=Hello"), QStringLiteral("mailto:a@example.com?subject=Hello"));
}

TEST(PDFLinkTest, ShowsForeignLettersOfAHostAsWhatTheyAre)
{
    EXPECT_EQ(address("https://ex\\303\\244mple.com/"), QStringLiteral("https://xn--exmple-cua.com/"));
}

TEST(PDFLinkTest, CompletesAddressesByTheDocumentsBase)
{
    EXPECT_EQ(
        address("page.html", "/URI<</Base(https://example.com/dir/)>>"),
        QStringLiteral("https://example.com/dir/page.html"));
    EXPECT_EQ(address("page.html", "/URI<</Base(file:///dir/)>>"), QStringLiteral("(inert)"));
    EXPECT_EQ(address("page.html"), QStringLiteral("(inert)"));
}

TEST(PDFLinkTest, IsInertForEveryOtherScheme)
{
    for (const QByteArray scheme :
         {"file:///etc/passwd", "ftp://example.com/", "javascript:alert\\(1\\)", "data:text/html,x",
          "smb://example.com/x", "tel:112", "x-man-page://x", "vbscript:x", "mailto", "https:", "http:///x",
          "//example.com/x", ""})
        EXPECT_EQ(address(scheme), QStringLiteral("(inert)")) << scheme.toStdString();
}

TEST(PDFLinkTest, IsInertWithControlCharactersInItsAddress)
{
    EXPECT_EQ(address("https://example.com/\\n/x"), QStringLiteral("(inert)"));
    EXPECT_EQ(address("java\\tscript:x"), QStringLiteral("(inert)"));
}

TEST(PDFLinkTest, IsInertWhenItsLetterWouldAttachAFile)
{
    EXPECT_EQ(address("mailto:a@example.com?attach=/etc/passwd"), QStringLiteral("(inert)"));
    EXPECT_EQ(address("mailto:a@example.com?subject=x&%41ttachment=x"), QStringLiteral("(inert)"));
}

TEST(PDFLinkTest, IsInertForEveryOtherAction)
{
    EXPECT_TRUE(isInert("/A<</S/Launch/F(program)>>"));
    EXPECT_TRUE(isInert("/A<</S/JavaScript/JS(app.alert\\(1\\))>>"));
    EXPECT_TRUE(isInert("/A<</S/GoToR/F(other.pdf)/D[0/Fit]>>"));
    EXPECT_TRUE(isInert("/A<</S/SubmitForm/F(https://example.com)>>"));
    EXPECT_TRUE(isInert("/A<</S/ImportData/F(x.fdf)>>"));
}

TEST(PDFLinkTest, IsLeftOutWhenItIsHidden)
{
    EXPECT_EQ(linksOf({"/F 2", "/F 32", "/F 4"}).size(), 1U);
}

TEST(PDFLinkTest, OtherAnnotationsAreNoLinks)
{
    PDFWriter writer;
    writer.addPage("", "/Annots[<</Subtype/Text/Rect[0 0 9 9]>> null 7 (x)]");
    const TestFolder folder;
    const auto document = PDFDocument::open(folder.write(QStringLiteral("links.pdf"), writer.bytes()));
    EXPECT_EQ((*document)->page(0)->links().size(), 0U);
}

TEST(PDFLinkTest, FindsItsPageWhereThePageTreeCountsWrongly)
{
    PDFWriter writer;
    writer.addPage("", "/Annots[<</Subtype/Link/Rect[0 0 9 9]/Dest[9 0 R/Fit]>>]");
    writer.addPage("");
    writer.addPage("");
    writer.setCount("2");
    const TestFolder folder;
    const auto document = PDFDocument::open(folder.write(QStringLiteral("links.pdf"), writer.bytes()));
    const auto links = (*document)->page(0)->links();
    ASSERT_EQ(links.size(), 1U);
    EXPECT_EQ(std::get<PDFDestination>(links[0].target).page, 2);
}

} // namespace
} // namespace pdf
