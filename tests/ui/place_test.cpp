#include "platform/qt/place.h"

#include <gtest/gtest.h>

namespace quoravel {
namespace {

TEST(Place, AWindowThatNoScreenShowsMovesInsideTheNearest) {
    const QList<QRect> screens{{0, 0, 1280, 1024}, {1280, 0, 1920, 1080}};

    struct Row {
        const char* what;
        QRect stored;
        QPoint becomes;
        QSize size = {800, 600};
    };

    for (const Row& row : {
             Row{"half over the edge, still to be reached", {-700, 50, 800, 600}, {-700, 50}},
             Row{"on the second screen", {2000, 50, 800, 600}, {2000, 50}},
             Row{"left of everything", {-5000, 50, 800, 600}, {0, 50}},
             Row{"below", {100, 5000, 800, 600}, {100, 376}},
             Row{"title bar above the screens", {100, -300, 800, 600}, {100, 0}},
             Row{"on a screen that is gone", {3300, 400, 800, 600}, {2400, 400}},
             Row{"larger than all screens", {-9000, -9000, 32000, 4000}, {1280, 0}, {1920, 1032}},
         }) {
        SCOPED_TRACE(row.what);
        const QRect placed = InsideSomeScreen(row.stored, screens);
        EXPECT_EQ(placed.topLeft(), row.becomes);
        EXPECT_EQ(placed.size(), row.size);
    }
}

} // namespace
} // namespace quoravel
