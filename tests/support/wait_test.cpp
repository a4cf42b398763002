#include "support/wait_test.h"

#include "platform/qt/application.h"
#include "platform/qt/modal.h"

#include <QPushButton>
#include <QTimer>

namespace quoravel {

namespace {

constexpr const char* kChooses = "chooses"; // a property

} // namespace

bool StandingDesktop::Chooses(const QDialog& dialog) {
    return dialog.property(kChooses).toBool();
}

bool StandingDesktop::Stand(const char* name) {
    QDialog dialog(WindowInUse());
    dialog.setObjectName(QLatin1StringView(name));
    dialog.setProperty(kChooses, dialog.objectName() != QStringLiteral("question"));
    QPushButton ok(QStringLiteral("OK"), &dialog);
    QObject::connect(&ok, &QPushButton::clicked, &dialog, &QDialog::accept);
    const bool agreed = dialog.exec() == QDialog::Accepted;
    hindrances += agreed ? 0 : 1;
    if (quitting)
        throw AppQuitting();
    return agreed;
}

void StandingDesktop::MsgBox(std::string_view text, std::string_view title) {
    ++hindrances;
    UiHost::MsgBox(text, title);
    Stand("box");
}

bool StandingDesktop::AskYesNo(std::string_view /*text*/, std::string_view /*title*/) {
    ++hindrances;
    return Stand("question");
}

std::optional<std::filesystem::path> StandingDesktop::AskOpenFile(const FileType& /*filter*/) {
    return Stand("open dialog") ? std::optional(to_open()) : std::nullopt;
}

std::optional<std::filesystem::path> StandingDesktop::AskSaveFile(const FileType& /*filter*/,
                                                                  std::string_view /*proposal*/) {
    return Stand("save dialog") ? std::optional(to_save()) : std::nullopt;
}

std::optional<std::filesystem::path> StandingDesktop::AskFolder() {
    return Stand("folder dialog") ? std::optional(to_folder()) : std::nullopt;
}

void StandingDesktop::Quit() {
    UiHost::Quit();
    QCoreApplication::exit(0); // every loop that runs now, and every one to come
}

void StandingDesktop::Restart() {
    quitting = false;
    for (QTimer* document : qApp->findChildren<QTimer*>(Qt::FindDirectChildrenOnly))
        delete document;
    const auto end = [] { QCoreApplication::exit(0); }; // quit would ask every window
    QTimer::singleShot(0, qApp, end);
    App::exec(); // from here on loops run again
}

WaitTest::WaitTest(std::unique_ptr<StandingDesktop> host) : MainWindowTest(std::move(host)) {
}

void WaitTest::SetUp() {
    MainWindowTest::SetUp();
    folder.File("tavrilo.bas", "10 REM\r20 REM\r");
    desktop.program_folder = folder.path();
    PlugInCable();
    print_dialogs() = {[this](QPrinter&) { return standing.Stand("page setup"); },
                       [this](QPrinter& printer) {
                           printer.setOutputFileName(
                               QString::fromStdString((folder.path() / "page.pdf").string()));
                           return printed = standing.Stand("print dialog");
                       }};
    static_cast<App*>(qApp)->Event_OpenDocument = [this](const auto& f) { window->OpenDisc(f); };
}

void WaitTest::TearDown() {
    link_.reset();
    window.reset();
    standing.Restart();
    static_cast<App*>(qApp)->Event_OpenDocument = nullptr;
    print_dialogs() = real_dialogs_;
    MainWindowTest::TearDown();
}

void WaitTest::StartAgain() {
    if (standing.quitting) {
        link_.reset();
        window.reset();
        standing.Restart();
        Start();
    }
    standing.quits = 0;
    printed = false;
    micro = CompanionDouble();
    micro.byte_time = CompanionDouble::Time{0};
    for (auto& side : micro.discs)
        side.assign(102400, 0);
    Module1::RXLen = 0;
    Module1::RXHead = Module1::RXTail;
    Module1::TXAbort = false;
    if (!link_)
        link_ = std::make_unique<QuickLink>(micro);
}

} // namespace quoravel
