#include "engine/writeall.h"

bool writeAll(QFileDevice& file, const QByteArray& content)
{
    // A disk that gets full takes a part first, and tells the error only for the rest.
    qint64 written = 0;
    while (written < content.size()) {
        const qint64 more = file.write(content.constData() + written, content.size() - written);
        if (more <= 0)
            return false;
        written += more;
    }
    // QSaveFile::commit() takes bytes that it could not write out of its buffer for written.
    // Of a buffer, too, a part may go first: the system tells the error only for the rest.
    return file.flush() || file.flush();
}
