#include "zal_timing_spy.h"
#include <QMetaMethod>
#include <cstdio>

namespace Zal {
namespace GTools {

TimingSpy::TimingSpy(QObject *watched, const QStringList &signatures) : QObject(watched)
{
    _clock.start();
    const QMetaObject *meta = watched->metaObject();
    const QMetaMethod slot = metaObject()->method(metaObject()->indexOfSlot("signalEmitted()"));
    for (const QString &signature : signatures) {
        const QByteArray normalized = QMetaObject::normalizedSignature(signature.toLatin1().constData());
        const int index = meta->indexOfSignal(normalized.constData());
        if (index < 0)
            continue;
        // A slot without arguments accepts any signal; the sender tells which one.
        connect(watched, meta->method(index), this, slot);
        _watched << signature;
    }
}

void TimingSpy::signalEmitted()
{
    const QMetaMethod signal = sender()->metaObject()->method(senderSignalIndex());
    std::printf("Signal: %s at %lld ms\n", signal.methodSignature().constData(),
                static_cast<long long>(_clock.elapsed()));
    std::fflush(stdout);
}

} // namespace GTools
} // namespace Zal
