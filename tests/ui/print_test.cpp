#include "platform/qt/printing.h"
#include "support/view_test.h"
#include "view/wordwise/state.h"

#include <QDialogButtonBox>
#include <QProcess>
#include <QPushButton>
#include <QTimer>
#include <QXmlStreamReader>

namespace quoravel {
namespace {

/// Views printed to PDF files, which poppler's tools read back.
class PrintTest : public ViewTest {
  protected:
    struct Word {
        int page;
        QRectF place; ///< in points, from the top left corner of the paper
    };

    void SetUp() override {
        ViewTest::SetUp();
        print_dialogs().print = [this](QPrinter& printer) {
            printer.setOutputFileName(PathText());
            return true;
        };
    }

    void TearDown() override {
        print_dialogs() = real_;
        ViewTest::TearDown();
    }

    [[nodiscard]] QString PathText() const {
        return QString::fromStdString((folder.path() / "page.pdf").string());
    }

    static QString Run(const char* tool, const QStringList& arguments) {
        QProcess process;
        process.start(QLatin1StringView(tool), arguments);
        EXPECT_TRUE(process.waitForFinished()) << tool << " is missing";
        return QString::fromUtf8(process.readAllStandardOutput());
    }

    /// The printed lines that are not empty, each run of blanks as one.
    [[nodiscard]] QStringList PrintedLines() const {
        QStringList lines;
        const QStringList arguments{QStringLiteral("-layout"), PathText(), QStringLiteral("-")};
        for (const QString& line : Run("pdftotext", arguments).split(u'\n'))
            if (!line.trimmed().isEmpty())
                lines.append(line.simplified());
        return lines;
    }

    [[nodiscard]] std::vector<Word> PrintedWords() const {
        std::vector<Word> words;
        int page = 0;
        QXmlStreamReader xml(
            Run("pdftotext", {QStringLiteral("-bbox"), PathText(), QStringLiteral("-")}));
        while (xml.readNext() != QXmlStreamReader::EndDocument && !xml.hasError()) {
            const auto number = [&](const char* name) {
                return xml.attributes().value(QLatin1StringView(name)).toDouble();
            };
            if (xml.isStartElement() && xml.name() == QLatin1StringView("page"))
                ++page;
            if (xml.isStartElement() && xml.name() == QLatin1StringView("word"))
                words.push_back({page, QRectF(QPointF(number("xMin"), number("yMin")),
                                              QPointF(number("xMax"), number("yMax")))});
        }
        return words;
    }

    static QStringList LinesOf(const View& view) {
        QStringList lines;
        for (const QString& line :
             QString::fromLatin1(Text(view).Text().c_str()).split(QStringLiteral("\r\n")))
            if (!line.trimmed().isEmpty())
                lines.append(line.simplified());
        return lines;
    }

    /// Lines that are as wide as the paper and more than it holds.
    [[nodiscard]] View ShowWideLines() const {
        std::string lines;
        for (int i = 0; i < 200; ++i)
            lines += std::string(180, 'x') + "\r";
        return ShowText(lines);
    }

    /// Holds the printed text against the block that it is to fill.
    void ExpectTextIn(const QRectF& block) const {
        QRectF all;
        double top_of_second = 0;
        for (const Word& word : PrintedWords()) {
            all |= word.place;
            if (word.page == 2 && top_of_second == 0)
                top_of_second = word.place.top();
        }
        constexpr double kCell = 8;
        constexpr double kLine = 16;
        EXPECT_NEAR(all.left(), block.left(), 1);
        EXPECT_NEAR(all.top(), block.top(), 2);
        EXPECT_NEAR(top_of_second, block.top(), 2);
        EXPECT_LE(all.right(), block.right() + 1);
        EXPECT_GT(all.right(), block.right() - kCell) << "broken too early";
        EXPECT_LE(all.bottom(), block.bottom() + 1);
        EXPECT_GT(all.bottom(), block.bottom() - kLine) << "room for one more line";
    }

    const PrintDialogs real_ = print_dialogs();
};

TEST_F(PrintTest, EachLineIsPrintedOnce) {
    window->OpenDisc(CopyOfDisc("demo-basic.ssd"));
    for (const char* item : {"FileViewAsHex", "DiscViewAsEX", "DiscViewAsCAT"}) {
        SCOPED_TRACE(item);
        Click(0, 1);
        const View view = Show(item);
        Choose(view, "FilePrint");
        EXPECT_EQ(PrintedLines(), LinesOf(view));
    }
}

TEST_F(PrintTest, LongLinesAreBrokenAndNothingIsLost) {
    Choose(ShowText(std::string(3000, 'x') + "\r\rend"), "FilePrint");
    QStringList lines = PrintedLines();
    EXPECT_EQ(lines.takeLast(), QStringLiteral("end"));
    EXPECT_GT(lines.size(), 20);
    EXPECT_EQ(lines.join(QString()).size(), 3000);
}

TEST_F(PrintTest, WithoutAPageSetupTheBlockIsThatOfASmallPage) {
    Choose(ShowWideLines(), "FilePrint");
    ExpectTextIn({36, 36, 540 - 48, 648 - 48});
}

TEST_F(PrintTest, ThePageSetupDecidesTheBlock) {
    const View view = ShowWideLines();
    print_dialogs().page_setup = [](QPrinter& printer) {
        printer.setPageLayout(QPageLayout(QPageSize(QPageSize::A5), QPageLayout::Landscape,
                                          QMarginsF(20, 30, 40, 50), QPageLayout::Point));
        return true;
    };
    Choose(view, "FilePageSetup");
    Choose(view, "FilePrint");
    const double width = 595 - 20 - 40;
    const double height = 420 - 30 - 50;
    ExpectTextIn({20 + 36, 30 + 36, width - 36 - 48, height - 36 - 48});
}

TEST_F(PrintTest, EachWindowKeepsItsConfirmedPageSetup) {
    const View view = ShowText("text");
    bool agree = true;
    QPageSize::PageSizeId offered{};
    print_dialogs().page_setup = [&](QPrinter& printer) {
        offered = printer.pageLayout().pageSize().id();
        printer.setPageSize(QPageSize(QPageSize::A3));
        return agree;
    };
    Choose(view, "FilePageSetup");
    EXPECT_NE(offered, QPageSize::A3);
    Choose(view, "FilePageSetup");
    EXPECT_EQ(offered, QPageSize::A3);

    const View other = ShowText("text");
    agree = false;
    Choose(other, "FilePageSetup");
    EXPECT_NE(offered, QPageSize::A3);
    EXPECT_EQ(other->PageSetup, "");
}

TEST_F(PrintTest, APaperTooSmallForTheBlockGetsALineAPage) {
    const View view = ShowText("one\rtwo\rthree\r");
    print_dialogs().page_setup = [](QPrinter& printer) {
        printer.setPageSize(QPageSize(QSizeF(90, 60), QPageSize::Point));
        return true;
    };
    Choose(view, "FilePageSetup");
    Choose(view, "FilePrint");
    EXPECT_GE(Run("pdfinfo", {PathText()}).count(QStringLiteral("Pages:")), 1);
}

TEST_F(PrintTest, StylesAndMarksArePrinted) {
    WordWise::DoubleStrike = true;
    Choose(ShowText("bold \x07"), "FilePrint");
    EXPECT_TRUE(Run("pdffonts", {PathText()}).contains(QStringLiteral("Bold")));
    EXPECT_TRUE(PrintedLines().join(u' ').contains(u'7')) << "the mark's digits";
}

TEST_F(PrintTest, CancelPrintsNothing) {
    print_dialogs().print = [](QPrinter&) { return false; };
    Choose(ShowText("text"), "FilePrint");
    EXPECT_EQ(folder.Names(), std::vector<std::string>{"config"});
}

TEST_F(PrintTest, APrintThatCannotStartIsTold) {
    print_dialogs().print = [](QPrinter& printer) {
        printer.setOutputFileName(QStringLiteral("/nowhere/page.pdf"));
        return true;
    };
    Choose(ShowText("text"), "FilePrint");
    EXPECT_EQ(desktop.TakeBoxTexts(),
              std::vector<std::string>{"Cannot print to /nowhere/page.pdf"});
}

TEST_F(PrintTest, ClosingTheWindowLeavesThePrintingAlone) {
    View view = ShowWideLines();
    desktop.on_pump = [&] { view->close(); };
    Choose(view, "FilePrint");
    desktop.on_pump = nullptr;
    EXPECT_TRUE(view->IsClosed());
    EXPECT_EQ(PrintedLines().join(QString()).size(), 200 * 180);
}

TEST_F(PrintTest, TheDesktopsOwnDialogsWork) {
    print_dialogs() = real_;
    const View view = ShowText("really printed");
    const auto answer = [&](const std::function<void(QDialog&)>& act) {
        QTimer::singleShot(0, view.get(), [act] {
            auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            ASSERT_NE(dialog, nullptr);
            act(*dialog);
            dialog->accept();
        });
    };
    answer([](QDialog& dialog) { EXPECT_NE(dialog.findChild<QDialogButtonBox*>(), nullptr); });
    Choose(view, "FilePageSetup");
    EXPECT_NE(view->PageSetup, "");
    answer([&](QDialog& dialog) {
        dialog.findChild<QLineEdit*>(QStringLiteral("filename"))->setText(PathText());
    });
    Choose(view, "FilePrint");
    EXPECT_EQ(PrintedLines(), QStringList{QStringLiteral("really printed")});
}

} // namespace
} // namespace quoravel
