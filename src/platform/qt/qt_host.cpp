#include "platform/qt/qt_host.h"

#include "platform/qt/guard.h"
#include "platform/qt/modal.h"
#include "platform/qt/sound_plugin.h"
#include "platform/qt/text.h"

#include <QApplication>
#include <QDateTime>
#include <QDir>
#include <QEventLoop>
#include <QFileDialog>
#include <QLocale>
#include <QMessageBox>
#include <QPluginLoader>
#include <QProcess>
#include <QStandardPaths>
#include <QTimer>

#include <cstdlib>
#include <sstream>
#include <sys/prctl.h>

namespace quoravel {

namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

constexpr int kOpenerNotFound = 127; // what a shell answers for a command that is not there

/// "Disc Images (*.img *.ssd)", or every file for a type without extensions.
QString NameFilter(const FileType& type) {
    QString patterns;
    std::istringstream extensions{std::string(type.Extensions)};
    for (std::string extension; std::getline(extensions, extension, ';');)
        patterns += QStringLiteral(" *") + HostText(extension);
    return QStringLiteral("%1 (%2)").arg(
        HostText(type.Name), patterns.isEmpty() ? QStringLiteral("*") : patterns.trimmed());
}

/// What a name without an extension gets; nothing for a type without any.
QString FirstExtension(const FileType& type) {
    return HostText(type.Extensions.substr(0, type.Extensions.find(';')));
}

std::optional<fs::path> PathUnlessCancelled(const QString& text) {
    return text.isEmpty() ? std::nullopt : std::optional(PathOfText(text));
}

/// A box over the window in use. Plain text: a file name with a tag in it is shown as it is.
int ShowBox(QMessageBox::Icon icon, QMessageBox::StandardButtons buttons, std::string_view text,
            std::string_view title) {
    QMessageBox box(icon, HostText(title), HostText(text), buttons, WindowInUse());
    if (title.empty())
        box.setWindowTitle(QStringLiteral("Quoravel"));
    box.setDefaultButton(QMessageBox::Yes); // of a question: nothing is lost by a hasty Enter
    box.setTextFormat(Qt::PlainText);
    box.setWindowModality(Qt::ApplicationModal);
    QApplication::setOverrideCursor(Qt::ArrowCursor); // a busy cursor would say: do not click
    const int answer = box.exec();
    QApplication::restoreOverrideCursor();
    return answer;
}

/// Deletes nothing at the end of the program: an opener that is still running then may be the
/// browser itself.
class Opener : public QProcess {
  public:
    using Done = std::function<void(int, const std::string&)>;

    explicit Opener(Done done) : done_(std::move(done)) {
        setProcessChannelMode(MergedChannels);
        Connect(this, &QProcess::finished, this, [this](int code, QProcess::ExitStatus) {
            Finish(code, QString::fromLocal8Bit(readAll()).trimmed());
        });
        Connect(this, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
            if (error == FailedToStart)
                Finish(kOpenerNotFound, errorString());
        });
    }

  private:
    void Finish(int code, const QString& result) {
        deleteLater();
        done_(code, Utf8OfHostText(result));
    }

    Done done_;
};

} // namespace

QtHost::QtHost() {
    // The kernel may wake us late by this much, 50 us by default, which would slow the cable down.
    prctl(PR_SET_TIMERSLACK, 1); // nanoseconds
    InstallHost(this);
}

QtHost::~QtHost() {
    InstallHost(nullptr);
}

void QtHost::UnwindIfQuitting() const {
    if (quitting_)
        throw AppQuitting();
}

void QtHost::MsgBox(std::string_view text, std::string_view title) {
    ShowBox(QMessageBox::NoIcon, QMessageBox::Ok, text, title);
    UnwindIfQuitting();
}

bool QtHost::AskYesNo(std::string_view text, std::string_view title) {
    const int answer =
        ShowBox(QMessageBox::Question, QMessageBox::Yes | QMessageBox::No, text, title);
    UnwindIfQuitting();
    return answer == QMessageBox::Yes;
}

void QtHost::DoEvents(int milliseconds) {
    if (milliseconds <= 0) {
        QCoreApplication::processEvents();
    } else {
        const auto deadline = Now() + std::chrono::milliseconds(milliseconds);
        QTimer wake; // processEvents alone would wait for the next event, however late
        wake.setTimerType(Qt::PreciseTimer);
        wake.setSingleShot(true);
        wake.start(milliseconds);
        while (!quitting_ && Now() < deadline)
            QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
    }
    UnwindIfQuitting();
}

std::chrono::nanoseconds QtHost::Now() {
    return std::chrono::steady_clock::now().time_since_epoch();
}

std::optional<fs::path> QtHost::Chosen(std::optional<fs::path> choice) {
    UnwindIfQuitting();
    if (choice)
        last_folder_ = choice->parent_path();
    return choice;
}

std::optional<fs::path> QtHost::AskOpenFile(const FileType& filter) {
    return Chosen(PathUnlessCancelled(QFileDialog::getOpenFileName(
        WindowInUse(), {}, PathText(last_folder_), NameFilter(filter))));
}

std::optional<fs::path> QtHost::AskSaveFile(const FileType& filter, std::string_view proposal) {
    QFileDialog dialog(WindowInUse(), {}, PathText(last_folder_), NameFilter(filter));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setDefaultSuffix(FirstExtension(filter)); // asks about the file that it then names
    dialog.selectFile(HostText(proposal));
    const bool accepted = dialog.exec() == QDialog::Accepted;
    return Chosen(PathUnlessCancelled(accepted ? dialog.selectedFiles().value(0) : QString()));
}

std::optional<fs::path> QtHost::AskFolder() {
    const fs::path& start = last_chosen_folder_.empty() ? last_folder_ : last_chosen_folder_;
    const auto folder =
        PathUnlessCancelled(QFileDialog::getExistingDirectory(WindowInUse(), {}, PathText(start)));
    UnwindIfQuitting();
    if (folder)
        last_chosen_folder_ = *folder;
    return folder;
}

std::optional<fs::path> QtHost::PreferencesFolder() {
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    if (folder.isEmpty() || !QDir().mkpath(folder))
        return {};
    return PathOfText(folder);
}

std::optional<fs::path> QtHost::StateFolder() {
    // Qt knows this folder of the desktop's rules only from version 6.7 on.
    if (const char* state = std::getenv("XDG_STATE_HOME"); state != nullptr && *state == '/')
        return fs::path(state) / "quoravel";
    const QString home = QDir::homePath();
    if (home.isEmpty())
        return {};
    return PathOfText(home) / ".local" / "state" / "quoravel";
}

fs::path QtHost::ProgramFolder() {
    return PathOfText(QCoreApplication::applicationDirPath());
}

void QtHost::PlaySound(const fs::path& file) {
    static QPluginLoader loader(PathText(ProgramFolder() / "quoravel-sound.so"));
    if (auto* player = qobject_cast<SoundPlugin*>(loader.instance()))
        player->Play(PathText(file));
    else
        QApplication::beep();
}

std::string QtHost::ShortDate() {
    return Utf8OfHostText(QLocale().toString(QDate::currentDate(), QLocale::ShortFormat));
}

std::string QtHost::LongTime() {
    return Utf8OfHostText(
        QLocale().toString(QDateTime::currentDateTime().time(), QLocale::LongFormat));
}

void QtHost::Quit() {
    quitting_ = true;
    QCoreApplication::exit(0);
}

void QtHost::OpenLink(std::string_view url, std::function<void(int, const std::string&)> done) {
    auto* opener = new Opener(std::move(done)); // deletes itself when it has finished
    opener->start(QStringLiteral("xdg-open"), {HostText(url)});
}

} // namespace quoravel
