#include "demo_status.h"
#include "demo_document.h"
#include <QFileInfo>

namespace Demo {

DemoStatus::DemoStatus(unsigned int mode, const QString &name)
    : StatusData(mode, name + QStringLiteral("_view")), _name(name)
{
}

bool DemoStatus::isEmpty()
{
    return Document::instance().points().empty();
}

std::vector<QString> DemoStatus::getAllData()
{
    if (Document::instance().fileName().isEmpty())
        return {};
    return {Document::instance().fileName()};
}

bool DemoStatus::isDataModified(const QString &) const
{
    return Document::instance().isModified();
}

bool DemoStatus::getSelectedDataName(QString *name, bool *modified) const
{
    if (Document::instance().fileName().isEmpty())
        return false;
    *name = QFileInfo(Document::instance().fileName()).fileName();
    *modified = Document::instance().isModified();
    return true;
}

} // namespace Demo
