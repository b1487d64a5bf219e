// SPDX-License-Identifier: AGPL-3.0-or-later
#include "cli/Options.h"

#include <QCoreApplication>

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace quillo::cli {
namespace {

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
        if (m_onlyFiles || !argument.startsWith(QLatin1Char('-')))
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
        const bool takesValue = name == QLatin1String("--password") || name == QLatin1String("--plain") ||
                                name == QLatin1String("--text") || name == QLatin1String("--time-limit");
        if (!takesValue) {
            takeSwitch(argument);
            return;
        }
        if (equals < 0 && m_next >= m_arguments.size()) {
            m_error = tr("%1 needs a value").arg(name);
            return;
        }
        const QString value = equals < 0 ? m_arguments[m_next++] : argument.mid(equals + 1);
        if (name == QLatin1String("--password"))
            m_options.password = value;
        else if (name == QLatin1String("--plain"))
            m_options.inputs.push_back({value, true});
        else if (name == QLatin1String("--time-limit"))
            takeTimeLimit(value);
        else
            m_options.passage = value;
    }

    void takeTimeLimit(const QString& value)
    {
        bool isNumber = false;
        const double seconds = value.toDouble(&isNumber);
        if (isNumber && std::isfinite(seconds) && seconds > 0)
            m_options.timeLimit = std::chrono::duration<double>(seconds);
        else
            m_error = tr("--time-limit needs a positive number of seconds");
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
        const auto standardInputs = std::count_if(
            inputs.begin(), inputs.end(), [](const Input& input) { return input.isStandardInput(); });
        if (!m_hasCommand)
            return tr("a command is missing");
        if (inputs.empty() && !explains)
            return tr("a file is missing");
        if (m_options.passage && !explains)
            return tr("--text goes with explain only");
        if (m_options.passage && !inputs.empty())
            return tr("a file and --text do not go together");
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
        "  --json         print JSON; with several files one object on a line for each, with its name as "
        "\"file\"\n"
        "  --password PW  the password of encrypted files\n"
        "  --plain FILE   read UTF-8 text whose pages are separated by form feeds instead of a PDF;\n"
        "                 - is standard input\n"
        "  --text STRING  the passage to explain\n"
        "  --time-limit SECONDS\n"
        "                 end with status 1 when it takes longer; without it, as long as it takes\n"
        "  --help         print this\n"
        "  --version      print the version\n"
        "\n"
        "A page that asks for too much time or memory is given up on: it has no text, and standard error "
        "tells\n"
        "its number. How far the reading is can be seen where standard error is a terminal.\n"
        "\n"
        "The exit status is 0 when everything was read, 1 when some input cannot be read or the time limit "
        "is\n"
        "over, 2 when the arguments make no sense, 3 when pages were given up on and all else was read, and\n"
        "130 or 143, as a shell tells it, when the program was interrupted or terminated.\n");
}

} // namespace quillo::cli
