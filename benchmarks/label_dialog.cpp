// The least that a program with a window can be: the yardstick for starting.
#include <QApplication>
#include <QDialog>
#include <QLabel>

int main(int argc, char* argv[]) {
    QApplication application(argc, argv);
    QDialog dialog;
    QLabel label(QStringLiteral("光源"), &dialog);
    return dialog.exec();
}
