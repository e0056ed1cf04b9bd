#pragma once
#include "gapp_export.h"
#include <QObject>
#include <QString>

class QWidget;

namespace Zal::GTools {

// The GUI tools' view of the help-identifier registry: code that knows only
// this base can still bind help identifiers to its widgets. The application
// shell derives the real registry from it; the first object made is the one
// instance() answers, until it is destroyed. GUI thread only.
class GAPP_EXPORT Documentation : public QObject
{
    Q_OBJECT
public:
    ~Documentation() override;
    // Binds a help identifier to a widget.
    virtual void registerIdInstance(const QWidget *widget, const QString &id) = 0;

    // The registry, or null while there is none.
    static Documentation *instance() { return _base_instance; }

protected:
    explicit Documentation(QObject *parent = nullptr);

private:
    static Documentation *_base_instance;
};

} // namespace Zal::GTools
