#include "zal_semimodal_dialog.h"
#include <algorithm>

namespace Zal::GTools {

std::vector<SemiModalDialog *> SemiModalDialog::_shown;

SemiModalDialog::SemiModalDialog(QWidget *parent) : QDialog(parent)
{
    setModal(false);
}

SemiModalDialog::~SemiModalDialog()
{
    _shown.erase(std::remove(_shown.begin(), _shown.end(), this), _shown.end());
}

SemiModalDialog *SemiModalDialog::current()
{
    for (auto it = _shown.rbegin(); it != _shown.rend(); ++it) {
        if ((*it)->isVisible())
            return *it;
    }
    return nullptr;
}

void SemiModalDialog::showEvent(QShowEvent *event)
{
    _shown.erase(std::remove(_shown.begin(), _shown.end(), this), _shown.end());
    _shown.push_back(this);
    QDialog::showEvent(event);
}

void SemiModalDialog::hideEvent(QHideEvent *event)
{
    _shown.erase(std::remove(_shown.begin(), _shown.end(), this), _shown.end());
    QDialog::hideEvent(event);
}

DialogShowEvent::DialogShowEvent(SemiModalDialog *dialog) : QEvent(eventType()), _dialog(dialog)
{
}

DialogShowEvent::~DialogShowEvent() = default;

QEvent::Type DialogShowEvent::eventType()
{
    static const QEvent::Type type = QEvent::Type(QEvent::registerEventType());
    return type;
}

} // namespace Zal::GTools
