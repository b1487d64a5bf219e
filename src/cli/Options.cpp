// SPDX-License-Identifier: AGPL-3.0-or-later
#include "cli/Options.h"

#include "pdf/FileName.h"

#include <QCoreApplication>

#include <algorithm>
#include <array>
#include <utility>

namespace quillo::cli {
namespace {

constexpr auto standardInput = QLatin1String("-");

constexpr std::array<QLatin1String, 4> optionsWithValue = {
    QLatin1String("--password"), QLatin1String("--password-file"), QLatin1String("--plain"),
    QLatin1String("--text")};

constexpr std::array<std::pair<QStringView, Command>, 6> commands = {{
    {u"text", Command::text},
    {u"classify", Command::classify},
    {u"extract", Command::extract},
    {u"actions", Command::actions},
    {u"explain", Command::explain},
    {u"analyze", Command::analyze},
}};

std::optional<Command> commandNamed(QStringView name)
{
    for (const auto& [entry, command] : commands) {
        if (entry == name)
            return command;
    }
    return std::nullopt;
}

/// An argument that is text and no name; what is no UTF-8 in it becomes U+FFFD.
QString textOf(const QString& argument)
{
    return QString::fromUtf8(pdf::bytesOfFileName(argument));
}

class Parser
{
    Q_DECLARE_TR_FUNCTIONS(quillo::cli::Parser)

public:
    explicit Parser(const QStringList& arguments)
        : m_arguments(arguments)
    {}

    std::variant<Options, Notice, UsageError> parse()
    {
        while (!m_error && m_next < m_arguments.size())
            takeArgument(m_arguments[m_next++]);
        if (m_notice)
            return *m_notice;
        if (!m_error)
            m_error = complaint();
        if (m_error)
            return UsageError{*m_error};
        return m_options;
    }

private:
    void takeArgument(const QString& argument)
    {
        if (m_onlyFiles || !argument.startsWith(QLatin1Char('-')) || argument == standardInput)
            takeWord(argument);
        else if (argument == QLatin1String("--"))
            m_onlyFiles = true;
        else
            takeOption(argument);
    }

    void takeWord(const QString& word)
    {
        if (m_hasCommand) {
            m_options.inputs.push_back({word, false});
            return;
        }
        const auto command = commandNamed(word);
        if (!command) {
            m_error = tr("there is no command '%1'").arg(word);
            return;
        }
        m_options.command = *command;
        m_hasCommand = true;
    }

    void takeOption(const QString& argument)
    {
        const qsizetype equals = argument.indexOf(QLatin1Char('='));
        const QString name = argument.left(equals);
        if (std::find(optionsWithValue.begin(), optionsWithValue.end(), name) == optionsWithValue.end()) {
            takeSwitch(argument);
            return;
        }
        if (equals < 0 && m_next >= m_arguments.size()) {
            m_error = tr("%1 needs a value").arg(name);
            return;
        }
        const QString value = equals < 0 ? m_arguments[m_next++] : argument.mid(equals + 1);
        if (name == QLatin1String("--password"))
            m_options.password = textOf(value);
        else if (name == QLatin1String("--password-file"))
            m_options.passwordFile = value;
        else if (name == QLatin1String("--plain"))
            m_options.inputs.push_back({value, true});
        else
            m_options.passage = textOf(value);
    }

    void takeSwitch(const QString& argument)
    {
        if (argument == QLatin1String("--json"))
            m_options.json = true;
        else if (argument == QLatin1String("--help") || argument == QLatin1String("-h"))
            m_notice = Notice::help;
        else if (argument == QLatin1String("--version"))
            m_notice = m_notice.value_or(Notice::version);
        else
            m_error = tr("there is no option %1").arg(argument);
    }

    /// What is wrong with the arguments as a whole.
    std::optional<QString> complaint() const
    {
        const auto& inputs = m_options.inputs;
        const bool explains = m_options.command == Command::explain;
        auto standardInputs = std::count_if(
            inputs.begin(), inputs.end(), [](const Input& input) { return input.isStandardInput(); });
        standardInputs += m_options.passwordFile == standardInput ? 1 : 0;
        standardInputs += explains && inputs.empty() && !m_options.passage ? 1 : 0;
        if (!m_hasCommand)
            return tr("a command is missing");
        if (inputs.empty() && !explains)
            return tr("a file is missing");
        if (m_options.passage && !explains)
            return tr("--text goes with explain only");
        if (m_options.passage && !inputs.empty())
            return tr("a file and --text do not go together");
        if (m_options.password && m_options.passwordFile)
            return tr("--password and --password-file do not go together");
        if (standardInputs > 1)
            return tr("standard input can be read only once");
        return std::nullopt;
    }

    const QStringList& m_arguments;
    qsizetype m_next = 0;
    bool m_onlyFiles = false;
    bool m_hasCommand = false;
    Options m_options;
    std::optional<Notice> m_notice;
    std::optional<QString> m_error;
};

} // namespace

std::variant<Options, Notice, UsageError> parseArguments(const QStringList& arguments)
{
    return Parser(arguments).parse();
}

QString helpText()
{
    return QCoreApplication::translate(
        "quillo::cli",
        "Reads PDF documents and says what they are, what they ask for and what data they hold.\n"
        "\n"
        "usage: quillo-cli COMMAND [OPTION]... FILE...\n"
        "       quillo-cli explain [--json] [--text STRING]\n"
        "\n"
        "commands:\n"
        "  text      print the text of every page\n"
        "  classify  say what kind of document it is\n"
        "  extract   list dates, amounts, reference numbers, addresses\n"
        "  actions   list what the document asks its reader to do\n"
        "  explain   read a passage in plainer words: the STRING, or else standard input\n"
        "  analyze   classify, actions and extract in one\n"
        "\n"
        "options:\n"
        "  --json                print JSON; with several files one object on a line for each, with its\n"
        "                        name as \"file\", where bytes that are no UTF-8 are written as \\xE9\n"
        "  --password-file FILE  the first line of FILE is the password of encrypted files\n"
        "  --password PW         the same, given here, where everybody can see it who lists processes\n"
        "  --plain FILE          read text whose pages are separated by form feeds instead of a PDF:\n"
        "                        UTF-8, or UTF-16 with its byte order mark\n"
        "  --text STRING         the passage to explain\n"
        "  --help                print this\n"
        "  --version             print the version\n"
        "\n"
        "A FILE that is - is standard input, which can be read once.\n"
        "\n"
        "Without a password you are asked for one on the terminal when a file needs it. That is the safest\n"
        "way, and for programs --password-file is.\n"
        "\n"
        "The exit status is 0, 1 when some input cannot be read, and 2 when the arguments make no sense.\n");
}

} // namespace quillo::cli
