#include "platform/qt/application.h"
#include "platform/qt/guard.h"
#include "platform/qt/qt_host.h"
#include "shell/frmMain.h"

#include <csignal>
#include <filesystem>
#include <system_error>

/// quoravel [IMAGE]: the desktop hands over a document as the first argument.
int main(int argc, char** argv) {
    using namespace quoravel;

    std::signal(SIGXFSZ, SIG_IGN); // a file that may not grow is an error to be told, not the end
    App app(argc, argv);
    const QtHost desktop;
    frmMain main_window;
    app.Event_OpenDocument = [&](const auto& file) { main_window.OpenDisc(file); };
    Guarded([&] {
        main_window.Event_Open();
        std::error_code ignored;
        if (argc > 1)
            app.Event_OpenDocument(std::filesystem::absolute(argv[1], ignored));
    });
    return desktop.IsQuitting() ? 0 : App::exec();
}
