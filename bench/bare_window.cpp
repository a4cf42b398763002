#include <QApplication>
#include <QHBoxLayout>
#include <QMainWindow>
#include <QTreeWidget>

// The yardstick for the program's start: a window with two empty lists and nothing else.
int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    QMainWindow window;
    auto* content = new QWidget;
    auto* row = new QHBoxLayout(content);
    row->addWidget(new QTreeWidget);
    row->addWidget(new QTreeWidget);
    window.setCentralWidget(content);
    window.resize(1000, 600);
    window.show();
    return QApplication::exec();
}
