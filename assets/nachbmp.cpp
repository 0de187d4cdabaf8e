// Part of the build: nachbmp FROM TO turns a drawn picture into the bitmap file that is shipped.

#include <QImage>
#include <QString>

int main(int argc, char** argv) {
    if (argc != 3) return 2;
    const QImage bild(QString::fromLocal8Bit(argv[1]));
    const bool fertig =
        bild.convertToFormat(QImage::Format_RGB32).save(QString::fromLocal8Bit(argv[2]), "BMP");
    return fertig ? 0 : 1;
}
