#include "base/native_path.h"

#include <QUtf8StringView>

#include <sys/stat.h>

#include <algorithm>

namespace vornic {

namespace {

constexpr char16_t escapedBytes = 0xDC00;
const QString fileScheme = QStringLiteral("file://");

/// Of the UTF-8 character that \a bytes begins with; 0 where it begins with none.
qsizetype lengthOfFirstCharacter(QByteArrayView bytes)
{
    for (qsizetype length = 1; length <= std::min<qsizetype>(4, bytes.size()); ++length) {
        if (QUtf8StringView(bytes.data(), length).isValidUtf8())
            return length;
    }
    return 0;
}

bool isEscapedByte(QChar character)
{
    return character.unicode() >= escapedBytes + 0x80 && character.unicode() <= escapedBytes + 0xFF;
}

} // namespace

QString pathFromNative(QByteArrayView bytes)
{
    QString path;
    while (!bytes.isEmpty()) {
        const qsizetype length = lengthOfFirstCharacter(bytes);
        const QString character = QString::fromUtf8(bytes.first(length));
        if (length == 0)
            path += QChar(escapedBytes + static_cast<unsigned char>(bytes.front()));
        else // decoding drops a byte order mark
            path += character.isEmpty() ? QString(QChar(QChar::ByteOrderMark)) : character;
        bytes = bytes.sliced(std::max<qsizetype>(length, 1));
    }
    return path;
}

QByteArray nativePath(const QString &path)
{
    QByteArray bytes;
    qsizetype begin = 0;
    for (qsizetype i = 0; i < path.size(); ++i) {
        const bool isPair = path[i].isHighSurrogate() && i + 1 < path.size() && path[i + 1].isLowSurrogate();
        if (isPair) {
            ++i;
        } else if (isEscapedByte(path[i])) {
            bytes += path.sliced(begin, i - begin).toUtf8();
            bytes += static_cast<char>(path[i].unicode() - escapedBytes);
            begin = i + 1;
        }
    }
    return bytes + path.sliced(begin).toUtf8();
}

QString fileUri(const QString &path)
{
    return fileScheme + QString::fromLatin1(nativePath(path).toPercentEncoding("/"));
}

QString pathFromFileUri(const QString &text)
{
    if (!text.startsWith(fileScheme))
        return text;
    return pathFromNative(QByteArray::fromPercentEncoding(text.sliced(fileScheme.size()).toUtf8()));
}

QString folderOfPath(const QString &path)
{
    const qsizetype slash = path.lastIndexOf(u'/');
    if (slash < 0)
        return QStringLiteral(".");
    return slash == 0 ? QStringLiteral("/") : path.first(slash);
}

QString nameOfPath(const QString &path)
{
    return path.sliced(path.lastIndexOf(u'/') + 1);
}

bool isTaken(const QString &path)
{
    struct stat file {
    };
    return ::lstat(nativePath(path).constData(), &file) == 0;
}

bool isThere(const QString &path)
{
    struct stat file {
    };
    return ::stat(nativePath(path).constData(), &file) == 0;
}

bool isFolder(const QString &path)
{
    struct stat file {
    };
    return ::stat(nativePath(path).constData(), &file) == 0 && S_ISDIR(file.st_mode);
}

} // namespace vornic
