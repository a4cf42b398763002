#include "platform/qt/printing.h"
#include "support/view_test.h"
#include "view/wordwise/state.h"

#include <QDialogButtonBox>
#include <QProcess>
#include <QRegularExpression>

namespace quoravel {
namespace {

/// Views printed to PDF files, which poppler's tools read back.
class PrintTest : public ViewTest {
  protected:
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

    /// What a tool of poppler's says of the printed pages.
    [[nodiscard]] static QString Tell(const char* tool, const QStringList& arguments) {
        QProcess process;
        process.start(QLatin1StringView(tool), arguments);
        EXPECT_TRUE(process.waitForFinished()) << tool << " is missing";
        return QString::fromUtf8(process.readAllStandardOutput());
    }

    /// The printed text, each run of blanks and line ends as one blank.
    [[nodiscard]] QString Printed() const {
        return Tell("pdftotext", {QStringLiteral("-layout"), PathText(), QStringLiteral("-")})
            .simplified();
    }

    /// Lines that are as wide as the paper and more than it holds.
    [[nodiscard]] View ShowWideLines() const {
        std::string lines;
        for (int i = 0; i < 200; ++i)
            lines += std::string(180, 'x') + "\r";
        return ShowText(lines);
    }

    /// The place of all words of some pages together, in points from the top left corner.
    static QRectF PlaceOf(const QString& pages) {
        static const QRegularExpression word(QLatin1StringView(
            R"re(<word xMin="([\d.]+)" yMin="([\d.]+)" xMax="([\d.]+)" yMax="([\d.]+)")re"));
        QRectF place;
        for (const auto& found : word.globalMatch(pages)) {
            const auto number = [&](int group) { return found.capturedView(group).toDouble(); };
            place |= QRectF(QPointF(number(1), number(2)), QPointF(number(3), number(4)));
        }
        return place;
    }

    /// Holds the printed text against the block that it is to fill.
    void ExpectTextIn(const QRectF& block) const {
        const QString pages =
            Tell("pdftotext", {QStringLiteral("-bbox"), PathText(), QStringLiteral("-")});
        const QRectF all = PlaceOf(pages);
        const QRectF second = PlaceOf(pages.section(QStringLiteral("<page"), 2, 2));
        constexpr double kCell = 8;
        constexpr double kLine = 16;
        EXPECT_NEAR(all.left(), block.left(), 1);
        EXPECT_NEAR(all.top(), block.top(), 2);
        EXPECT_NEAR(second.top(), block.top(), 2);
        EXPECT_LE(all.right(), block.right() + 1);
        EXPECT_GT(all.right(), block.right() - kCell) << "broken too early";
        EXPECT_LE(all.bottom(), block.bottom() + 1);
        EXPECT_GT(all.bottom(), block.bottom() - kLine) << "room for one more line";
    }

    const PrintDialogs real_ = print_dialogs();
};

TEST_F(PrintTest, EachLineIsPrintedOnceInItsStyleAndWithItsMarks) {
    WordWise::DoubleStrike = true;
    Choose(*ShowText("bold \x07\r\r" + std::string(300, 'x') + "\rend"), "FilePrint");
    const QString printed = Printed();
    EXPECT_TRUE(printed.contains(u'7')) << "the mark's digits";
    EXPECT_TRUE(printed.contains(QStringLiteral("bold")) && printed.endsWith(u"x end"));
    EXPECT_EQ(printed.count(u'x'), 300);
    EXPECT_FALSE(printed.contains(QString(200, u'x'))) << "wider than the paper";
    EXPECT_TRUE(Tell("pdffonts", {PathText()}).contains(QStringLiteral("Bold")));
}

TEST_F(PrintTest, WithoutAPageSetupTheBlockIsThatOfASmallPageEvenIfTheWindowIsClosed) {
    const View view = ShowWideLines();
    desktop.on_pump = [&] { view->close(); };
    Choose(*view, "FilePrint");
    desktop.on_pump = nullptr;
    EXPECT_TRUE(view->IsClosed());
    ExpectTextIn({36, 36, 540 - 48, 648 - 48});
    EXPECT_EQ(Printed().count(u'x'), 200 * 180);
}

TEST_F(PrintTest, ThePageSetupOfAWindowDecidesItsBlock) {
    const View view = ShowWideLines();
    bool agree = true;
    QPageSize::PageSizeId offered{};
    print_dialogs().page_setup = [&](QPrinter& printer) {
        offered = printer.pageLayout().pageSize().id();
        printer.setPageLayout(QPageLayout(QPageSize(QPageSize::A5), QPageLayout::Landscape,
                                          QMarginsF(20, 30, 40, 50), QPageLayout::Point));
        return agree;
    };
    Choose(*view, "FilePageSetup");
    Choose(*view, "FilePrint");
    const double width = 595 - 20 - 40;
    const double height = 420 - 30 - 50;
    ExpectTextIn({20 + 36, 30 + 36, width - 36 - 48, height - 36 - 48});
    Choose(*view, "FilePageSetup");
    EXPECT_EQ(offered, QPageSize::A5);

    agree = false;
    const View other = ShowText("text");
    Choose(*other, "FilePageSetup");
    EXPECT_NE(offered, QPageSize::A5);
    EXPECT_EQ(other->PageSetup, "");
}

TEST_F(PrintTest, APaperTooSmallForTheBlockGetsALineAPage) {
    const View view = ShowText("one\rtwo\rthree\r");
    print_dialogs().page_setup = [](QPrinter& printer) {
        printer.setPageSize(QPageSize(QSizeF(90, 60), QPageSize::Point));
        return true;
    };
    Choose(*view, "FilePageSetup");
    Choose(*view, "FilePrint");
    EXPECT_GE(Tell("pdfinfo", {PathText()}).count(QStringLiteral("Pages:")), 1);
}

TEST_F(PrintTest, CancelPrintsNothingAndAPrintThatCannotStartIsTold) {
    bool agree = false;
    print_dialogs().print = [&](QPrinter& printer) {
        printer.setOutputFileName(agree ? QStringLiteral("/nowhere/page.pdf") : PathText());
        return agree;
    };
    const View view = ShowText("text");
    Choose(*view, "FilePrint");
    EXPECT_FALSE(std::filesystem::exists(folder.path() / "page.pdf"));
    agree = true;
    Choose(*view, "FilePrint");
    EXPECT_EQ(desktop.TakeBoxTexts(),
              std::vector<std::string>{"Cannot print to /nowhere/page.pdf"});
}

TEST_F(PrintTest, TheDesktopsOwnDialogsWork) {
    print_dialogs() = real_;
    const View view = ShowText("really printed");
    InDialog(*view, "FilePageSetup", [](QWidget& dialog) {
        EXPECT_NE(dialog.findChild<QDialogButtonBox*>(), nullptr);
        dynamic_cast<QDialog&>(dialog).accept();
    });
    EXPECT_NE(view->PageSetup, "");
    InDialog(*view, "FilePrint", [&](QWidget& dialog) {
        Part<QLineEdit>(dialog, "filename").setText(PathText());
        dynamic_cast<QDialog&>(dialog).accept();
    });
    EXPECT_EQ(Printed(), QStringLiteral("really printed"));
}

} // namespace
} // namespace quoravel
