#include "enginesupport.h"

#include "clerk.h"

#include <csignal>
#include <sys/resource.h>

QStringList runToEnd(clerk* worker, int timeoutMs)
{
    QStringList ends;
    QObject receiver;
    QObject::connect(worker, &clerk::error_mess, &receiver, [&ends](const QString& m) { ends << m; });
    worker->start();
    if (!QTest::qWaitFor([&] { return worker->isFinished(); }, timeoutMs))
        return ends << QStringLiteral("<still running>");
    // Every signal the thread sent is queued by now, for the receiver here
    // and for whatever else the caller connected (progress, say).
    QCoreApplication::sendPostedEvents(nullptr, QEvent::MetaCall);
    return ends;
}

QByteArray readFile(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<unreadable>");
}

bool writeFile(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(bytes) == bytes.size();
}

QStringList dataRows(const QString& name)
{
    QStringList rows = QString::fromUtf8(readFile(QStringLiteral(ZV_TEST_DATA "/") + name)).split('\n', Qt::SkipEmptyParts);
    rows.erase(std::remove_if(rows.begin(), rows.end(), [](const QString& r) { return r.startsWith('#'); }), rows.end());
    return rows;
}

QByteArray imageBytes(const unsigned char* image, int size)
{
    return QByteArray(reinterpret_cast<const char*>(image), size);
}

void limitFileSize(qint64 bytes)
{
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    limit.rlim_cur = bytes < 0 ? limit.rlim_max : rlim_t(bytes);
    setrlimit(RLIMIT_FSIZE, &limit);
}
