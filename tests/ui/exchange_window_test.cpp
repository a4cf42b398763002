#include "disc/catalogue.h"
#include "support/main_window_test.h"

#include <QDropEvent>
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
        fs::create_directory(out());
    }

    [[nodiscard]] fs::path out() const { return folder.path() / "out"; }

    static QUrl UrlOf(const fs::path& file) {
        return QUrl::fromEncoded("file://" +
                                 QByteArray::fromStdString(file.string()).toPercentEncoding("/"));
    }

    /// Drops what a file manager would: enter, move, drop.
    void Drop(int drive, const QMimeData& data) const {
        QWidget& target = *List(drive).viewport();
        const QPoint at(40, 60);
        QDragEnterEvent enter(at, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(&target, &enter);
        if (!enter.isAccepted())
            return;
        QDragMoveEvent move(at, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(&target, &move);
        EXPECT_EQ(move.dropAction(), Qt::CopyAction) << "the original must stay where it is";
        QDropEvent drop(at, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(&target, &drop);
    }

    void Drop(int drive, const std::vector<fs::path>& files) const {
        QMimeData data;
        QList<QUrl> urls;
        for (const fs::path& file : files)
            urls.append(UrlOf(file));
        data.setUrls(urls);
        Drop(drive, data);
    }

    /// Drops, and waits for the lists that follow 100 ms later.
    void DropAndRefresh(int drive, const std::vector<fs::path>& files) const {
        Drop(drive, files);
        auto* refresh = window->findChild<QTimer*>(QStringLiteral("tmrRefresh"));
        EXPECT_TRUE(QTest::qWaitFor([&] { return refresh->isActive(); }));
        EXPECT_TRUE(QTest::qWaitFor([&] { return !refresh->isActive(); }));
    }
};

TEST_F(ExchangeTest, SelectedFilesAreExportedWithTheirSidecars) {
    Click(1, 0);
    Click(1, 2, Qt::ControlModifier);
    desktop.folders.emplace_back(out());
    Choose("FileExportFile");
    EXPECT_EQ(TextOf(out() / "$.SIEVE.INF"), "$.SIEVE    FF1900 FF8023 000188 L \n");
    EXPECT_EQ(TextOf(out() / "$.TEXT.INF"), "$.TEXT     000000 000000 000016   \n");
    EXPECT_EQ(fs::file_size(out() / "$.SIEVE"), 0x188U);
    EXPECT_FALSE(fs::exists(out() / "$.SORT"));
    EXPECT_TRUE(desktop.boxes.empty());

    desktop.folders.emplace_back(); // Cancel
    Choose("FileExportFile");
}

TEST_F(ExchangeTest, AnExportThatFailsIsToldOnceAndStops) {
    Click(1, 0);
    Choose("FileSelectAll");
    desktop.folders.emplace_back(folder.path() / "gone");
    Choose("FileExportFile");
    EXPECT_EQ(desktop.TakeBoxTexts(), Texts{"Cannot write $.SIEVE: No such file or directory"});
}

TEST_F(ExchangeTest, ADropImportsFilesPassesOverFoldersAndRefreshesOnce) {
    const fs::path data = folder.File("data.bin", "twelve bytes");
    const fs::path sidecar = folder.File("data.bin.INF", "T.TITLE    001900 008023 00000C L \n");
    const fs::path plain = folder.File("README.TXT", "plain");
    DropAndRefresh(0, {sidecar, out(), data, plain});
    EXPECT_EQ(Names(0), (Texts{"$.README", "$.SIEVE", "$.TEXT", "T.TITLE"}));
    EXPECT_EQ(Row(0, 3)[1], "L");
    EXPECT_EQ(Row(0, 3)[3], "008023");
    EXPECT_EQ(Title(), "Quoravel - demo-dual.dsd*");
    EXPECT_EQ(Module1::mSelectedItem, 0) << "a refresh ends on row 0 of drive 0";
    EXPECT_TRUE(desktop.boxes.empty());
}

TEST_F(ExchangeTest, CopyAndPasteDoByKeysWhatDragAndDropDo) {
    Click(1, 1);
    QTest::keyClick(&List(1), Qt::Key_Insert, Qt::ControlModifier);
    QTest::keyClick(&List(0), Qt::Key_V, Qt::ControlModifier);
    EXPECT_TRUE(QTest::qWaitFor([&] { return List(0).ListCount() == 3; }));
    EXPECT_EQ(Names(0), (Texts{"$.SIEVE", "$.SORT", "$.TEXT"}));
    EXPECT_EQ(Row(0, 1)[2], "FF1900") << "the sidecar came with it";
}

TEST_F(ExchangeTest, ARefusalStopsTheDropAndKeepsWhatWentBefore) {
    const std::vector<fs::path> files{folder.File("A", "1"), folder.File("SIEVE", "2"),
                                      folder.File("B", "3")};
    DropAndRefresh(1, files);
    EXPECT_EQ(desktop.TakeBoxTexts(), Texts{"File $.SIEVE Already Exists"});
    EXPECT_EQ(Names(1), (Texts{"$.A", "$.SIEVE", "$.SORT", "$.TEXT"}));
}

TEST_F(ExchangeTest, NamesThatAreNotUtf8ArriveByteByByte) {
    DropAndRefresh(0, {folder.File("B\xE9", "x")});
    EXPECT_EQ(Module1::DiscImg.Byte(GetDirOffset(0, GetPos(0, "$.Bi")) + 1), 0xE9)
        << "the stored byte keeps all its bits, the list shows seven of them";
}

TEST_F(ExchangeTest, TextAndLinksOfTheWebAreNoFiles) {
    QMimeData text;
    text.setText(QStringLiteral("hello"));
    Drop(0, text);
    QMimeData link;
    link.setUrls({QUrl(QStringLiteral("https://quoravel.example/a"))});
    Drop(0, link);
    QTest::qWait(1);
    EXPECT_FALSE(Module1::gDirty);
    EXPECT_TRUE(desktop.boxes.empty());
}

TEST_F(ExchangeTest, ADragOffersDataAndSidecarOfEachRowWhichExistBeforeItBegins) {
    Click(1, 1);
    Click(1, 2, Qt::ControlModifier);
    const std::vector<fs::path> files = List(1).DragRow();
    Texts names;
    for (const fs::path& file : files) {
        EXPECT_TRUE(fs::exists(file)) << file;
        names.push_back(file.filename().string());
    }
    EXPECT_EQ(names, (Texts{"$.SORT", "$.SORT.INF", "$.TEXT", "$.TEXT.INF"}));
    EXPECT_EQ(fs::status(files[0].parent_path().parent_path()).permissions(), fs::perms::owner_all);

    // Onto the other drive: one goes in with its addresses, the other is there already.
    DropAndRefresh(0, files);
    EXPECT_EQ(Names(0), (Texts{"$.SIEVE", "$.SORT", "$.TEXT"}));
    EXPECT_EQ(Row(0, 1)[2], "FF1900");
    EXPECT_EQ(desktop.TakeBoxTexts(), Texts{"File $.TEXT Already Exists"});

    window.reset();
    EXPECT_FALSE(fs::exists(files[0])) << "the files of drags go with the program";
    Start();
}

} // namespace
} // namespace quoravel
