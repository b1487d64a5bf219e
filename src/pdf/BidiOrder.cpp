// SPDX-License-Identifier: AGPL-3.0-or-later
#include "pdf/BidiOrder.h"

#include <QChar>

#include <algorithm>
#include <cstddef>
#include <utility>

namespace pdf {
namespace {

enum class Kind { left, right, number, neutral };

Kind kindOf(char32_t code)
{
    switch (QChar::direction(code)) {
    case QChar::DirL:
        return Kind::left;
    case QChar::DirR:
    case QChar::DirAL:
        return Kind::right;
    case QChar::DirEN:
    case QChar::DirAN:
        return Kind::number;
    default:
        return Kind::neutral;
    }
}

bool belongsToNumbers(char32_t code)
{
    const auto direction = QChar::direction(code);
    return direction == QChar::DirES || direction == QChar::DirCS || direction == QChar::DirET;
}

std::vector<Kind> kindsOf(const std::vector<TextCharacter>& characters)
{
    std::vector<Kind> kinds;
    kinds.reserve(characters.size());
    for (const TextCharacter& character : characters)
        kinds.push_back(kindOf(character.code));
    // Points within numbers, and signs and units right beside them.
    for (std::size_t i = 1; i < kinds.size(); ++i) {
        if (kinds[i] == Kind::neutral && kinds[i - 1] == Kind::number &&
            belongsToNumbers(characters[i].code)) {
            const bool isTerminator = QChar::direction(characters[i].code) == QChar::DirET;
            if (isTerminator || (i + 1 < kinds.size() && kinds[i + 1] == Kind::number))
                kinds[i] = Kind::number;
        }
    }
    for (std::size_t i = kinds.size(); i-- > 1;) {
        if (kinds[i] == Kind::number && kinds[i - 1] == Kind::neutral &&
            QChar::direction(characters[i - 1].code) == QChar::DirET)
            kinds[i - 1] = Kind::number;
    }
    return kinds;
}

/// The embedding levels of the characters (UAX #9): odd from right to left, even from left to right.
std::vector<int> levelsOf(const std::vector<Kind>& kinds)
{
    const auto rights = std::count(kinds.begin(), kinds.end(), Kind::right);
    const Kind base = rights >= std::count(kinds.begin(), kinds.end(), Kind::left) ? Kind::right : Kind::left;

    std::vector<Kind> letterAfter(kinds.size() + 1, base);
    for (std::size_t i = kinds.size(); i-- > 0;) {
        const bool isLetter = kinds[i] == Kind::left || kinds[i] == Kind::right;
        letterAfter[i] = isLetter ? kinds[i] : letterAfter[i + 1];
    }
    std::vector<int> levels(kinds.size());
    Kind letterBefore = base;
    const int leftLevel = base == Kind::right ? 2 : 0;
    for (std::size_t i = 0; i < kinds.size(); ++i) {
        const bool isLetter = kinds[i] == Kind::left || kinds[i] == Kind::right;
        if (isLetter)
            letterBefore = kinds[i];
        const Kind kind = isLetter || letterBefore == letterAfter[i] ? letterBefore : base;
        levels[i] = kind == Kind::left ? leftLevel : kinds[i] == Kind::number ? 2 : 1;
    }
    return levels;
}

/// Reverses every run of characters whose level is at least the given one.
void reverseRuns(std::vector<TextCharacter>& characters, std::vector<int>& levels, int least)
{
    for (std::size_t start = 0; start < levels.size(); ++start) {
        std::size_t end = start;
        while (end < levels.size() && levels[end] >= least)
            ++end;
        const auto from = static_cast<std::ptrdiff_t>(start);
        const auto to = static_cast<std::ptrdiff_t>(end);
        std::reverse(characters.begin() + from, characters.begin() + to);
        std::reverse(levels.begin() + from, levels.begin() + to);
        start = end;
    }
}

/// Fonts tell either what a bracket looks like or what it means, and only the text can say which.
void mirrorBrackets(std::vector<TextCharacter>& characters)
{
    int opened = 0;
    bool isMirrored = false;
    for (const TextCharacter& character : characters) {
        if (!character.isRightToLeft)
            continue;
        const auto category = QChar::category(character.code);
        opened += category == QChar::Punctuation_Open ? 1 : category == QChar::Punctuation_Close ? -1 : 0;
        isMirrored = isMirrored || opened < 0;
    }
    if (!isMirrored)
        return;
    for (TextCharacter& character : characters) {
        if (character.isRightToLeft)
            character.code = QChar::mirroredChar(character.code);
    }
}

} // namespace

bool isRightToLeft(char32_t code)
{
    // Nothing before the Hebrew block is, and nearly all text is there.
    return code >= 0x590 && kindOf(code) == Kind::right;
}

void sortByPlace(std::vector<TextCharacter>& characters, float spaceGap)
{
    struct Group
    {
        float middle;
        std::size_t start;
        std::size_t end;
    };
    std::vector<Group> groups;
    for (std::size_t i = 0; i < characters.size(); ++i) {
        const bool isMark = QChar::direction(characters[i].code) == QChar::DirNSM;
        if (isMark && !groups.empty())
            groups.back().end = i + 1;
        else
            groups.push_back({(characters[i].from + characters[i].to) / 2, i, i + 1});
    }
    std::stable_sort(
        groups.begin(), groups.end(), [](const Group& a, const Group& b) { return a.middle < b.middle; });

    std::vector<TextCharacter> sorted;
    sorted.reserve(characters.size());
    for (const Group& group : groups) {
        const TextCharacter& letter = characters[group.start];
        const bool isGap = !sorted.empty() && letter.from - sorted.back().to > spaceGap;
        if (isGap && letter.code != ' ' && sorted.back().code != ' ') {
            fz_rect box = fz_union_rect(sorted.back().box, letter.box);
            sorted.push_back({' ', box, sorted.back().to, letter.from, false});
        }
        // Read from right to left, the marks come after their letter again.
        for (std::size_t i = group.end; i-- > group.start;)
            sorted.push_back(characters[i]);
    }
    characters = std::move(sorted);
}

void putInReadingOrder(std::vector<TextCharacter>& characters)
{
    std::vector<int> levels = levelsOf(kindsOf(characters));
    for (std::size_t i = 0; i < characters.size(); ++i)
        characters[i].isRightToLeft = levels[i] == 1;
    reverseRuns(characters, levels, 1);
    reverseRuns(characters, levels, 2);
    mirrorBrackets(characters);
}

} // namespace pdf
