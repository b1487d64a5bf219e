// SPDX-License-Identifier: AGPL-3.0-or-later
#include "FormFile.h"
#include "Tools.h"
#include "support/ChildProcess.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDir>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <random>
#include <thread>

namespace pdf {
namespace {

using quillo::ChildProcess;

constexpr int defaultKills = 40;
// Some saves take less time, few take more, so that a kill falls into any part of one.
constexpr int longestSave = 20'000;

int kills()
{
    const int asked = qEnvironmentVariableIntValue("QUILLO_TEST_KILLS");
    return asked > 0 ? asked : defaultKills;
}

/// Another program saves a document again and again and is killed in the middle of it.
class KilledSavingTest : public testing::Test
{
protected:
    KilledSavingTest()
    {
        m_form.add("/FT/Tx/T(number)/DA(/Helv 12 Tf 0 g)");
        // Something that takes a while to be written, and that is not made smaller by packing it.
        std::mt19937 random(1);
        QByteArray bulk(400'000, Qt::Uninitialized);
        std::generate(bulk.begin(), bulk.end(), [&random] { return static_cast<char>(random()); });
        m_form.writer().addStream(bulk, "/Type/Bulk");
    }

    /// The number in the field; -1 where the file is not whole.
    static int numberIn(const QString& path)
    {
        const auto document = PDFDocument::open(path);
        if (!document)
            return -1;
        const auto fields = (*document)->page(0)->formFields();
        if (!fields || fields->empty())
            return -1;
        const QString text = fields->front().text;
        const QString number = text.section(QLatin1Char(' '), 0, 0);
        return text == (number + QLatin1Char(' ')).repeated(20) ? number.toInt() : -1;
    }

    void killWhileSaving(const QString& source, const QString& target)
    {
        int oldOnes = 0;
        int newOnes = 0;
        int leftovers = 0;
        for (int round = 0; round < kills(); ++round) {
            ChildProcess child(
                QCoreApplication::applicationDirPath() + QStringLiteral("/pdf_saving_child"),
                {source, target});
            int said = child.readLine().value_or(QByteArray()).toInt();
            ASSERT_GT(said, 0) << "the child does not save";
            std::this_thread::sleep_for(
                std::chrono::microseconds(static_cast<int>(m_random() % longestSave)));
            child.sendSignal(SIGKILL);
            ASSERT_EQ(child.waitForEnd(), SIGKILL);
            while (const auto line = child.readLine())
                said = line->toInt();

            const int saved = numberIn(target);
            ASSERT_TRUE(saved == said || saved == said + 1) << "said " << said << ", saved " << saved;
            const auto checked = runTool(QStringLiteral("qpdf"), {QStringLiteral("--check"), target});
            if (checked) {
                ASSERT_EQ(checked->exitCode, 0) << checked->output.toStdString();
            }
            (saved == said ? oldOnes : newOnes) += 1;
            leftovers += static_cast<int>(unfinished(target).size());
        }
        std::printf(
            "%d kills: %d left the save that was confirmed last, %d the one after it; %d left an unfinished "
            "file beside it\n",
            kills(), oldOnes, newOnes, leftovers);
        EXPECT_EQ(oldOnes + newOnes, kills());

        // The next save clears up.
        const auto document = PDFDocument::open(source);
        ASSERT_TRUE(document);
        ASSERT_TRUE((*document)->write(target, Overwrite::always));
        EXPECT_EQ(unfinished(target), QStringList());
    }

    static QStringList unfinished(const QString& target)
    {
        return QFileInfo(target).dir().entryList({QStringLiteral(".pdf-save-*")}, QDir::Files | QDir::Hidden);
    }

    TestFolder m_folder;
    FormFile m_form;
    std::mt19937 m_random{1};
};

TEST_F(KilledSavingTest, LeavesTheOldOrTheNewFileWhenChangesAreAppended)
{
    const QString path = m_folder.write(QStringLiteral("form.pdf"), m_form.bytes());
    killWhileSaving(path, path);
}

TEST_F(KilledSavingTest, LeavesTheOldOrTheNewFileWhenItIsWrittenAnew)
{
    QByteArray damaged = m_form.bytes();
    damaged.truncate(damaged.lastIndexOf("xref\n0"));
    killWhileSaving(
        m_folder.write(QStringLiteral("damaged.pdf"), damaged), m_folder.path(QStringLiteral("saved.pdf")));
}

} // namespace
} // namespace pdf
