#include "shell/frmAbout.h"

#include "platform/host.h"
#include "platform/qt/guard.h"
#include "platform/qt/link_label.h"
#include "platform/qt/text.h"

#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace quoravel {

namespace {

constexpr QSize kSize(366, 252); // with letters of the usual size; large ones need more
constexpr std::string_view kMail = "hello@quoravel.example";
constexpr std::string_view kMailLink = "mailto:hello@quoravel.example?subject=Quoravel";
constexpr std::string_view kWeb = "https://quoravel.example/";

/// A centred line of text. Of a link only the words react, not the whole width of the window.
template<class Label>
Label& AddLine(QVBoxLayout& column, const char* name, std::string_view text) {
    auto* label = new Label;
    label->setObjectName(QLatin1StringView(name));
    label->setText(HostText(text));
    column.addWidget(label, 0, Qt::AlignCenter);
    return *label;
}

} // namespace

frmAbout::frmAbout(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("frmAbout"));
    setWindowTitle(QStringLiteral("About Quoravel"));
    setWindowModality(Qt::ApplicationModal);

    auto* column = new QVBoxLayout(this);
    QLabel& name = AddLine<QLabel>(*column, "StaticText3", "Quoravel");
    QFont large = name.font();
    large.setPointSizeF(large.pointSizeF() * 1.6);
    large.setBold(true);
    name.setFont(large);
    AddLine<QLabel>(*column, "StaticText2", "For the floppy discs of the BBC Microcomputer");
    AddLine<QLabel>(*column, "lblVersion", "Version").setText(QStringLiteral("2.0.0"));
    LinkLabel& mail = AddLine<LinkLabel>(*column, "StaticText11", kMail);
    LinkLabel& web = AddLine<LinkLabel>(*column, "StaticText12", kWeb);
    Connect(&mail, &LinkLabel::MouseDown, this, [this] { OpenLink(kMailLink); });
    Connect(&web, &LinkLabel::MouseDown, this, [this] { OpenLink(kWeb); });

    auto* ok = new QPushButton(QStringLiteral("OK"), this);
    ok->setObjectName(QStringLiteral("cmdOK"));
    ok->setDefault(true);
    column->addWidget(ok, 0, Qt::AlignCenter);
    ok->setFocus();
    setFixedSize(kSize.expandedTo(sizeHint()));
    Connect(ok, &QPushButton::clicked, this, [this] { accept(); });
}

void frmAbout::OpenLink(std::string_view url) {
    host().OpenLink(url, [](int code, const std::string& result) {
        if (code != 0)
            host().MsgBox("Error " + std::to_string(code) + ", " + result);
    });
}

} // namespace quoravel
