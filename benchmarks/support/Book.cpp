// SPDX-License-Identifier: AGPL-3.0-or-later
#include "support/Book.h"

#include "writer/Document.h"

#include <algorithm>
#include <cctype>
#include <iterator>
#include <random>
#include <sstream>
#include <string_view>
#include <vector>

namespace quillo::benchmark {
namespace {

constexpr int pagesPerChapter = 16;
constexpr double left = 90;
constexpr double width = 432;
constexpr double top = 700;
constexpr double bottom = 96;
constexpr double leading = 14.5;

// Listed as often as they should come up: a third of running English is words like the first row's.
constexpr std::string_view vocabulary =
    "the the the the the of of of and and and and to to to a a a in in in that that it it was "
    "was was he she they his her with as for had had on at by but not from which were when there "
    "all no so if out up one into over then them could would before after again house river "
    "window morning evening letter garden harbour winter summer light shadow stranger captain "
    "sister father children village mountain journey silence question answer street market "
    "kitchen table chair paper candle water stone bridge forest field horse ship sail storm wind "
    "rain night door key hand face voice name word story year hour walked looked turned opened "
    "closed carried remembered answered whispered thought wondered followed waited listened "
    "returned found lost began finished kept left old young long small quiet bright dark heavy "
    "narrow distant unfamiliar afflicted official magnificent extraordinary slowly carefully "
    "suddenly perhaps although nevertheless therefore sufficient difficult flickering";

std::vector<std::string> wordsOf(std::string_view text)
{
    std::istringstream stream{std::string(text)};
    return {std::istream_iterator<std::string>(stream), {}};
}

class Author
{
public:
    std::string paragraph()
    {
        std::string text;
        const int sentences = between(3, 8);
        for (int i = 0; i < sentences; ++i)
            text.append(sentence()).append(" ");
        text.pop_back();
        return text;
    }

    std::string title()
    {
        std::string text = capitalised(word());
        for (int i = 0; i < 3; ++i)
            text.append(" ").append(word());
        return text;
    }

private:
    std::string sentence()
    {
        std::string text = capitalised(word());
        const int length = between(5, 24);
        for (int i = 1; i < length; ++i) {
            if (between(0, 9) == 0)
                text.append(",");
            text.append(" ").append(word());
        }
        return text.append(".");
    }

    const std::string& word() { return m_words[static_cast<std::size_t>(between(0, m_words.size() - 1))]; }

    static std::string capitalised(std::string text)
    {
        text.front() = static_cast<char>(std::toupper(static_cast<unsigned char>(text.front())));
        return text;
    }

    /// The standard's distributions differ between libraries; the engine itself does not.
    int between(int first, std::size_t last)
    {
        return first + static_cast<int>(m_random() % (static_cast<unsigned>(last) - first + 1U));
    }

    const std::vector<std::string> m_words = wordsOf(vocabulary);
    std::mt19937 m_random{1843};
};

/// Shows a line from margin to margin, or just from the left one.
void showLine(
    samples::Canvas& canvas, double y, const samples::TextStyle& style, const std::string& line,
    bool isJustified)
{
    const auto gaps = static_cast<double>(std::count(line.begin(), line.end(), ' '));
    const double excess = width - samples::widthOf(style, line);
    const double wordSpacing = isJustified && gaps > 0 ? excess / gaps : 0;
    canvas.raw(std::to_string(wordSpacing) + " Tw");
    canvas.text(left, y, style, line);
}

} // namespace

std::string makeBook(int pageCount)
{
    samples::Document document({"A long novel", "Quillo", "en"});
    const samples::TextStyle body = {document.standardFont(samples::Typeface::serif), 11};
    const samples::TextStyle heading = {document.standardFont(samples::Typeface::serifBold), 18};
    const samples::TextStyle runningHead = {document.standardFont(samples::Typeface::serifItalic), 9};

    Author author;
    std::string chapter;
    std::vector<std::string> rest;
    for (int number = 1; number <= pageCount; ++number) {
        samples::Page& page = document.addPage(samples::letter);
        double y = top;
        if ((number - 1) % pagesPerChapter == 0) {
            chapter = author.title();
            page.canvas.text(left, y, heading, chapter);
            y -= 3 * leading;
        } else {
            page.canvas.text(left, top + 2 * leading, runningHead, chapter);
        }
        while (y > bottom) {
            if (rest.empty())
                rest = samples::wrapped(body, author.paragraph(), width);
            const bool isLast = rest.size() == 1;
            showLine(page.canvas, y, body, rest.front(), !isLast);
            rest.erase(rest.begin());
            y -= leading;
        }
        page.canvas.text(
            left + width / 2, bottom - 2 * leading, runningHead, std::to_string(number),
            samples::Alignment::centre);
    }
    return document.finish();
}

} // namespace quillo::benchmark
