// The baseline of ruhe.sh: a program that is nothing but a tray icon made with the same toolkit.

#include <QApplication>
#include <QPixmap>
#include <QSystemTrayIcon>

int main(int argc, char** argv) {
    const QApplication program(argc, argv);
    QPixmap picture(22, 22);
    picture.fill(Qt::darkBlue);
    QSystemTrayIcon icon{QIcon(picture)};
    icon.show();
    return QApplication::exec();
}
