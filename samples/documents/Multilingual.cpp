// SPDX-License-Identifier: AGPL-3.0-or-later
#include "documents/Samples.h"

#include "writer/Document.h"
#include "writer/EmbeddedFont.h"
#include "writer/EmojiFont.h"

#include <array>

namespace samples {
namespace {

constexpr double left = 84;
constexpr double right = 511;
constexpr double sentenceStart = 178;

const Colour ink = colour(0x23303B);
const Colour quiet = colour(0x6A7885);
const Colour accent = colour(0x9A3B26);
const Colour hairline = colour(0xE0D6CF);

enum class Script { european, arabic, chinese };

struct Greeting
{
    std::string_view language;
    std::string_view sentence;
    Script script = Script::european;
};

constexpr std::array<Greeting, 15> greetings = {{
    {"English", "Welcome! Breakfast is served from seven to ten."},
    {"Français", "Bienvenue ! Le petit déjeuner est servi de sept à dix heures."},
    {"Deutsch", "Herzlich willkommen! Frühstück gibt es von sieben bis zehn Uhr."},
    {"Español", "¡Bienvenidos! El desayuno se sirve de siete a diez de la mañana."},
    {"Polski", "Witamy! Śniadanie podajemy od siódmej do dziesiątej."},
    {"Čeština", "Vítejte! Snídaně se podává od sedmi do deseti hodin."},
    {"Íslenska", "Velkomin! Það er morgunmatur frá sjö til tíu."},
    {"Türkçe", "Hoş geldiniz! İyi günler; kahvaltı yediden ona kadardır."},
    {"Tiếng Việt", "Chào mừng quý khách! Bữa sáng từ bảy giờ đến mười giờ."},
    {"Ελληνικά", "Καλώς ήρθατε! Το πρωινό σερβίρεται από τις επτά έως τις δέκα."},
    {"Русский", "Добро пожаловать! Завтрак подаётся с семи до десяти часов."},
    {"Українська", "Ласкаво просимо! Сніданок подають із сьомої до десятої."},
    {"العربية", "مرحبا بكم! الفطور من السابعة حتى العاشرة صباحا.", Script::arabic},
    {"中文", "欢迎光临！早餐时间为七点至十点，祝您住得愉快。", Script::chinese},
    {"日本語", "ようこそ！朝食は七時から十時までです。", Script::chinese},
}};

class Welcome
{
public:
    Welcome()
        : m_document({"Welcome – Bienvenue – Καλώς ήρθατε – 欢迎光临", "The Lighthouse Inn", "mul"})
        , m_canvas(m_document.addPage(a4).canvas)
        , m_european(m_document.adopt(std::make_unique<EmbeddedFont>("NotoSans")))
        , m_arabic(m_document.adopt(std::make_unique<EmbeddedFont>("NotoNaskhArabic")))
        , m_chinese(m_document.adopt(std::make_unique<EmbeddedFont>("DroidSansFallback")))
        , m_emoji(m_document.adopt(std::make_unique<EmojiFont>()))
    {}

    std::string make()
    {
        m_canvas.fill({0, a4.height - 10, a4.width, 10}, accent);
        m_canvas.text(left, 744, {m_european, 27, ink}, "The Lighthouse Inn");
        m_canvas.text(right, 745, {m_emoji, 22}, "☀☕🍳", Alignment::right);
        m_canvas.text(left, 721, {m_european, 11.5, quiet}, "A word of welcome in fifteen languages");
        double y = 676;
        for (const Greeting& greeting : greetings) {
            drawGreeting(greeting, y);
            y -= 36;
        }
        drawClosing(y - 8);
        return m_document.finish();
    }

private:
    Font* fontFor(Script script) const
    {
        switch (script) {
        case Script::arabic:
            return m_arabic;
        case Script::chinese:
            return m_chinese;
        case Script::european:
            break;
        }
        return m_european;
    }

    void drawGreeting(const Greeting& greeting, double y)
    {
        Font* font = fontFor(greeting.script);
        m_canvas.text(left, y, {font, 9.5, accent}, greeting.language);
        // Arabic begins at the right.
        const bool fromRight = greeting.script == Script::arabic;
        m_canvas.text(
            fromRight ? right : sentenceStart, y, {font, fromRight ? 12.5 : 10.5, ink}, greeting.sentence,
            fromRight ? Alignment::right : Alignment::left);
        m_canvas.line(left, y - 13, right, y - 13, 0.5, hairline);
    }

    void drawClosing(double y)
    {
        const TextStyle text = {m_european, 10.5, ink};
        const std::string_view wish = "Good night and sleep well ";
        m_canvas.text(left, y, text, wish);
        m_canvas.text(left + widthOf(text, wish), y, {m_emoji, 10.5}, "🌙");
        const std::string_view smile = "With a smile, your hosts ";
        const double end = right - widthOf({m_emoji, 10.5}, "😀❤");
        m_canvas.text(end, y, text, smile, Alignment::right);
        m_canvas.text(end, y, {m_emoji, 10.5}, "😀❤");
    }

    Document m_document;
    Canvas& m_canvas;
    Font* m_european;
    Font* m_arabic;
    Font* m_chinese;
    Font* m_emoji;
};

} // namespace

std::string makeMultilingual()
{
    return Welcome().make();
}

} // namespace samples
