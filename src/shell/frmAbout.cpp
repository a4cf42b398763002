#include "shell/frmAbout.h"

#include "platform/host.h"
#include "platform/qt/guard.h"
#include "platform/qt/link_label.h"
#include "platform/qt/text.h"

#include <QLabel>
#include <QPushButton>

namespace quoravel {

namespace {

constexpr QSize kSize(366, 252);
constexpr std::string_view kMail = "hello@quoravel.example";
constexpr std::string_view kMailLink = "mailto:hello@quoravel.example?subject=Quoravel";
constexpr std::string_view kWeb = "https://quoravel.example/";
constexpr int kLineHeight = 24;

/// A centred line of text across the window.
template<class Label>
Label& AddLine(QWidget& window, const char* name, std::string_view text, int top) {
    auto* label = new Label(&window);
    label->setObjectName(QLatin1StringView(name));
    label->setText(HostText(text));
    label->setAlignment(Qt::AlignCenter);
    label->setGeometry(0, top, kSize.width(), kLineHeight);
    return *label;
}

} // namespace

frmAbout::frmAbout(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("frmAbout"));
    setWindowTitle(QStringLiteral("About Quoravel"));
    setFixedSize(kSize);
    setWindowModality(Qt::ApplicationModal);

    QLabel& name = AddLine<QLabel>(*this, "StaticText3", "Quoravel", 28);
    QFont large = name.font();
    large.setPointSizeF(large.pointSizeF() * 1.6);
    large.setBold(true);
    name.setFont(large);
    AddLine<QLabel>(*this, "StaticText2", "For the floppy discs of the BBC Microcomputer", 64);
    AddLine<QLabel>(*this, "lblVersion", "Version", 92).setText(QStringLiteral("2.0.0"));
    // Only the words react, not the whole width of the window.
    const auto shrink = [](QWidget& link) {
        const QPoint middle = link.geometry().center();
        link.adjustSize();
        link.move(middle - link.rect().center());
    };
    LinkLabel& mail = AddLine<LinkLabel>(*this, "StaticText11", kMail, 128);
    LinkLabel& web = AddLine<LinkLabel>(*this, "StaticText12", kWeb, 156);
    shrink(mail);
    shrink(web);
    Connect(&mail, &LinkLabel::MouseDown, this, [this] { OpenLink(kMailLink); });
    Connect(&web, &LinkLabel::MouseDown, this, [this] { OpenLink(kWeb); });

    auto* ok = new QPushButton(QStringLiteral("OK"), this);
    ok->setObjectName(QStringLiteral("cmdOK"));
    ok->setDefault(true);
    ok->setGeometry((kSize.width() - 80) / 2, 204, 80, 28);
    ok->setFocus();
    Connect(ok, &QPushButton::clicked, this, [this] { accept(); });
}

void frmAbout::OpenLink(std::string_view url) {
    host().OpenLink(url, [](int code, const std::string& result) {
        if (code != 0)
            host().MsgBox("Error " + std::to_string(code) + ", " + result);
    });
}

} // namespace quoravel
