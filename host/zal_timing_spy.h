#pragma once
#include "gapp_export.h"
#include <QElapsedTimer>
#include <QObject>
#include <QStringList>

namespace Zal {
namespace GTools {

// Writes a line to standard output whenever one of the watched signals of an
// object is emitted, with the milliseconds since the spy was made. Signals
// are named by their signature, e.g. "dataChangedSignal (uint, uint)".
// The spy is a child of the watched object.
class GAPP_EXPORT TimingSpy : public QObject
{
    Q_OBJECT
public:
    TimingSpy(QObject *watched, const QStringList &signatures);
    // The signatures that matched a signal of the watched object.
    const QStringList &watchedSignals() const { return _watched; }

private slots:
    void signalEmitted();

private:
    QElapsedTimer _clock;
    QStringList _watched;
};

} // namespace GTools
} // namespace Zal
