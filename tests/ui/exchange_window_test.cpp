#include "disc/catalogue.h"
#include "support/main_window_test.h"

#include <QMimeData>
#include <QTimer>
#include <QUrl>

namespace quoravel {
namespace {

namespace fs = std::filesystem;
using Texts = std::vector<std::string>;

class ExchangeTest : public MainWindowTest {
  protected:
    void SetUp() override {
        MainWindowTest::SetUp();
        window->OpenDisc(CopyOfDisc("demo-dual.dsd"));
        fs::create_directory(out);
    }

    /// Drops, and waits for the lists that follow 100 ms later.
    void DropAndRefresh(int drive, const std::vector<fs::path>& files) const {
        Drop(List(drive), files);
        const auto& refresh = Part<QTimer>(*window, "tmrRefresh");
        EXPECT_TRUE(QTest::qWaitFor([&] { return refresh.isActive(); }));
        EXPECT_TRUE(QTest::qWaitFor([&] { return !refresh.isActive(); }));
    }

    const fs::path out = folder.path() / "out";
};

TEST_F(ExchangeTest, SelectedFilesAreExportedWithTheirSidecarsUntilOneFails) {
    Click(1, 0);
    Click(1, 2, Qt::ControlModifier);
    desktop.folders = {out, std::nullopt, folder.path() / "gone"};
    Choose("FileExportFile");
    EXPECT_EQ(TextOf(out / "$.SIEVE.INF"), "$.SIEVE    FF1900 FF8023 000188 L \n");
    EXPECT_EQ(TextOf(out / "$.TEXT.INF"), "$.TEXT     000000 000000 000016   \n");
    EXPECT_EQ(fs::file_size(out / "$.SIEVE"), 0x188U);
    EXPECT_FALSE(fs::exists(out / "$.SORT"));
    Choose("FileExportFile"); // Cancel
    EXPECT_TRUE(desktop.boxes.empty());
    Choose("FileExportFile");
    EXPECT_EQ(desktop.TakeBoxTexts(), Texts{"Cannot write $.SIEVE: No such file or directory"});
}

TEST_F(ExchangeTest, ADropImportsFilesUntilOneIsRefusedAndRefreshesOnce) {
    DropAndRefresh(1, {folder.File("data.bin.INF", "T.TITLE    001900 008023 00000C L \n"), out,
                       folder.File("data.bin", "twelve bytes"), folder.File("B\xE9", "x"),
                       folder.File("SIEVE", "2"), folder.File("LAST", "3")});
    EXPECT_EQ(desktop.TakeBoxTexts(), Texts{"File $.SIEVE Already Exists"});
    EXPECT_EQ(Names(1), (Texts{"$.Bi", "$.SIEVE", "$.SORT", "$.TEXT", "T.TITLE"}));
    EXPECT_EQ(Row(1, 4)[1] + Row(1, 4)[3], "L008023");
    EXPECT_EQ(Module1::DiscImg.Byte(GetDirOffset(1, GetPos(1, "$.Bi")) + 1), 0xE9)
        << "names that are not UTF-8 arrive byte by byte; the list shows seven of their bits";
    EXPECT_EQ(Title(), "Quoravel - demo-dual.dsd*");
    EXPECT_EQ(Module1::cur_drive, 0) << "a refresh ends on row 0 of drive 0";
    EXPECT_EQ(Module1::mSelectedItem, 0);
}

TEST_F(ExchangeTest, CopyAndPasteDoByKeysWhatDragAndDropDo) {
    Click(1, 1);
    Click(1, 2, Qt::ControlModifier);
    QTest::keyClick(&List(1), Qt::Key_Insert, Qt::ControlModifier);
    QTest::keyClick(&List(0), Qt::Key_V, Qt::ControlModifier);
    EXPECT_TRUE(QTest::qWaitFor([&] { return List(0).ListCount() == 3; }));
    EXPECT_EQ(Names(0), (Texts{"$.SIEVE", "$.SORT", "$.TEXT"}));
    EXPECT_EQ(Row(0, 1)[2], "FF1900") << "the sidecar came with it";
    EXPECT_EQ(desktop.TakeBoxTexts(), Texts{"File $.TEXT Already Exists"});
}

TEST_F(ExchangeTest, TextAndLinksOfTheWebAreNoFiles) {
    QMimeData text;
    text.setText(QStringLiteral("hello"));
    Drop(List(0), text);
    QMimeData link;
    link.setUrls({QUrl(QStringLiteral("https://quoravel.example/a"))});
    Drop(List(0), link);
    QTest::qWait(1);
    EXPECT_FALSE(Module1::gDirty);
    EXPECT_TRUE(desktop.boxes.empty());
}

} // namespace
} // namespace quoravel
