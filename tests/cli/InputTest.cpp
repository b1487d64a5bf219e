// SPDX-License-Identifier: AGPL-3.0-or-later
#include "cli/InputFile.h"

#include "cli/ProgramRun.h"
#include "cli/SpooledInput.h"
#include "support/PDFWriter.h"
#include "support/Printing.h"
#include "json/StrictJson.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace quillo::cli {
namespace {

using testing::ContainsRegex;
using testing::HasSubstr;
using testing::StartsWith;

std::string textOf(const QByteArray& bytes)
{
    const ProgramRun run = runCli(words("text --json --plain -"), {.input = bytes});
    EXPECT_EQ(run.status, 0);
    return parseJson(run.output).at("pageTexts").at(0).at("text");
}

/// A file with the content, opened for reading.
InputFile inputOf(const TestFolder& folder, const QByteArray& content)
{
    auto file = InputFile::open(folder.write(QStringLiteral("input"), content));
    EXPECT_TRUE(file);
    return *std::move(file);
}

TEST(PipedInputTest, TextIsReadToItsEnd)
{
    const TestFolder folder;
    const QByteArray text = QByteArray("All of it is read. ").repeated(10'000);
    const QString path = folder.write(QStringLiteral("long.txt"), text);
    const ProgramRun run = runShell("cat \"$1\" | \"$0\" text --plain -", {path});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.output.size(), text.size());
    EXPECT_TRUE(run.output == text);
    const ProgramRun explained = runShell("cat \"$1\" | \"$0\" explain --json", {path});
    EXPECT_EQ(QByteArray::fromStdString(parseJson(explained.output).at("originalText")).size(), text.size());
}

TEST(PipedInputTest, ADocumentIsReadLikeItsFile)
{
    const ProgramRun file = runCli({QStringLiteral("text"), QStringLiteral("--json"), sample("manual.pdf")});
    const ProgramRun piped = runShell("cat \"$1\" | \"$0\" text --json -", {sample("manual.pdf")});
    EXPECT_EQ(piped.status, 0) << piped.errors.toStdString();
    EXPECT_TRUE(piped.output == file.output);
    const ProgramRun both = runShell("\"$0\" classify --json \"$1\" - < \"$1\"", {sample("letter.pdf")});
    EXPECT_EQ(both.output.count("\"documentType\":\"Letter\""), 2);
    EXPECT_THAT(both.output.toStdString(), HasSubstr("{\"file\":\"-\","));
}

TEST(PipedInputTest, ADocumentThatIsCutShortIsAnErrorAndNoPart)
{
    for (const char* script :
         {"head -c 5000 \"$1\" | \"$0\" text -", "head -c 30000 \"$1\" | \"$0\" text -",
          "head -c -200 \"$1\" | \"$0\" text --json -"}) {
        const ProgramRun run = runShell(script, {sample("manual.pdf")});
        EXPECT_EQ(run.status, 1) << script;
        EXPECT_EQ(run.output, QByteArray()) << script;
        EXPECT_EQ(run.errors, QByteArray("quillo-cli: -: it is cut short: the mark of its end is missing\n"))
            << script;
    }
}

TEST(PipedInputTest, NothingAndWhatIsNoDocumentAreErrors)
{
    for (const char* content : {"", "This is no PDF."}) {
        const ProgramRun run = runCli(words("text -"), {.input = content});
        EXPECT_EQ(run.status, 1);
        EXPECT_EQ(run.output, QByteArray());
        EXPECT_THAT(run.errors.toStdString(), StartsWith("quillo-cli: -: "));
    }
}

TEST(PipedInputTest, AnInputThatCannotBeReadIsAnErrorAndNoEmptyText)
{
    for (const char* script : {"\"$0\" explain <&-", "\"$0\" text --plain - <&-", "\"$0\" text - < /"}) {
        const ProgramRun run = runShell(script);
        EXPECT_EQ(run.status, 1) << script;
        EXPECT_EQ(run.output, QByteArray()) << script;
        EXPECT_THAT(run.errors.toStdString(), ContainsRegex("^quillo-cli: -: .+\n$")) << script;
    }
}

TEST(PipedInputTest, NothingTakesThePlaceOfAClosedStream)
{
    // Of these, the document would have got the text written over it.
    const TestFolder folder;
    const QString copy = folder.path(QStringLiteral("copy.pdf"));
    const ProgramRun run = runShell(
        "cp \"$1\" \"$2\"; \"$0\" text \"$2\" >&-; echo $?; \"$0\" text \"$2\" <&- >&-; echo $?; "
        "\"$0\" text - <\"$2\" >&- 2>&-; echo $?; cmp \"$1\" \"$2\"",
        {sample("letter.pdf"), copy});
    EXPECT_EQ(run.output, QByteArray("1\n1\n1\n"));
    EXPECT_EQ(run.errors, QByteArray("quillo-cli: standard output: Bad file descriptor\n").repeated(2));
}

TEST(PipedInputTest, AFullDiskIsReported)
{
    // A file of this process may grow to a few blocks only.
    const ProgramRun run = runShell("ulimit -f 1; cat \"$1\" | \"$0\" text -", {sample("manual.pdf")});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.output, QByteArray());
    EXPECT_THAT(
        run.errors.toStdString(),
        ContainsRegex("^quillo-cli: -: no copy can be made in .+: File too large\n$"));
    const ProgramRun nowhere = runShell("TMPDIR=/nowhere \"$0\" text - < \"$1\"", {sample("manual.pdf")});
    EXPECT_EQ(nowhere.status, 1);
    EXPECT_THAT(nowhere.errors.toStdString(), HasSubstr("no copy can be made in /nowhere: "));
}

TEST(PipedInputTest, MoreThanTheLimitIsAnErrorAndNoPart)
{
    const TestFolder folder;
    constexpr qint64 limit = qint64{2} << 20;
    const QByteArray most(limit, 'x');
    InputFile whole = inputOf(folder, most);
    const auto all = whole.readAll(limit, QStringLiteral("text"));
    ASSERT_TRUE(all);
    EXPECT_TRUE(*all == most);
    InputFile more = inputOf(folder, most + 'x');
    const auto part = more.readAll(limit, QStringLiteral("text"));
    ASSERT_FALSE(part);
    EXPECT_EQ(part.error().message, QStringLiteral("more than 2 MB of text"));

    InputFile document = inputOf(folder, most);
    EXPECT_TRUE(SpooledInput::read(document, limit));
    InputFile larger = inputOf(folder, most + 'x');
    const auto spooled = SpooledInput::read(larger, limit);
    ASSERT_FALSE(spooled);
    EXPECT_EQ(spooled.error().message, QStringLiteral("more than 2 MB of a document"));
}

TEST(PipedInputTest, LeavesNoCopyBehind)
{
    const TestFolder folder;
    const ProgramRun run = runShell(
        "TMPDIR=\"$2\" \"$0\" text - < \"$1\"; ls -A \"$2\"", {sample("letter.pdf"), folder.path({})});
    const ProgramRun direct = runCli({QStringLiteral("text"), sample("letter.pdf")});
    EXPECT_EQ(run.output, direct.output) << "nothing is listed behind the text";
}

TEST(PlainTextEncodingTest, AMarkSaysHowTheTextIsWritten)
{
    EXPECT_EQ(textOf(QByteArray("\xff\xfeh\0\xe9\0\x3d\xd8\x00\xde", 10)), "hé😀");
    EXPECT_EQ(textOf(QByteArray("\xfe\xff\0h\0\xe9\xd8\x3d\xde\0", 10)), "hé😀");
    EXPECT_EQ(textOf("\xef\xbb\xbfh\xc3\xa9"), "hé");
    EXPECT_EQ(textOf("h\xc3\xa9"), "hé");
    EXPECT_EQ(textOf(QByteArray("\xff\xfeh\0x", 5)), "h\ufffd") << "half a character at the end";
}

/// A folder with a letter under names that are no ordinary ones.
class NamesTest : public testing::Test
{
protected:
    /// Runs the script in the folder, where the letter is letter.pdf.
    ProgramRun run(const char* script)
    {
        const QByteArray whole = QByteArray("cd \"$1\" && cp \"$2\" letter.pdf && ") + script;
        return runShell(whole.constData(), {m_folder.path({}), sample("letter.pdf")});
    }

    ~NamesTest() override
    {
        // The folder cannot remove what Qt cannot name.
        for (const auto& entry : std::filesystem::directory_iterator(m_folder.path({}).toStdString()))
            std::filesystem::remove(entry);
    }

    TestFolder m_folder;
};

TEST_F(NamesTest, ANameThatIsNoUtf8IsRead)
{
    const ProgramRun letter = run(
        "name=$(printf 'caf\\351.pdf'); mv letter.pdf \"$name\"; \"$0\" classify --json \"$name\" \"$name\"");
    EXPECT_EQ(letter.status, 0) << letter.errors.toStdString();
    EXPECT_EQ(letter.output.count("\"documentType\":\"Letter\""), 2);
    EXPECT_EQ(parseJson(letter.output.split('\n').first()).at("file"), "caf\\xE9.pdf");
    const ProgramRun text =
        run("name=$(printf 'caf\\351.txt'); echo notes > \"$name\"; \"$0\" text --plain \"$name\"");
    EXPECT_EQ(text.output, QByteArray("notes\n"));
}

TEST_F(NamesTest, ANameWithAColonAtItsStartIsRead)
{
    EXPECT_EQ(run("mv letter.pdf :a.pdf; \"$0\" classify :a.pdf").status, 0);
    EXPECT_EQ(run("echo notes > :a; \"$0\" text --plain :a").output, QByteArray("notes\n"));
}

TEST_F(NamesTest, AMessageShowsTheBytesOfAName)
{
    const ProgramRun missing = run("\"$0\" text \"$(printf 'caf\\351\\033.pdf')\"");
    EXPECT_EQ(missing.status, 1);
    EXPECT_EQ(
        missing.errorText(), QStringLiteral("quillo-cli: caf\\xE9\u241b.pdf: the file does not exist\n"));
    const ProgramRun wrong = run("\"$0\" \"$(printf 'caf\\351')\"");
    EXPECT_EQ(wrong.status, 2);
    EXPECT_THAT(wrong.errors.toStdString(), HasSubstr("there is no command 'caf\\xE9'"));
}

TEST_F(NamesTest, APassageThatIsNoUtf8GetsReplacementCharacters)
{
    const ProgramRun run = runShell("\"$0\" explain --json --text \"$(printf 'caf\\351')\"");
    EXPECT_EQ(parseJson(run.output).at("originalText"), "caf\ufffd");
}

} // namespace
} // namespace quillo::cli
