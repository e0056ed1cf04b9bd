#include "zal_dialogs.h"
#include "zal_semimodal_dialog.h"
#include "zal_translate.h"
#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <cstdio>

namespace Zal {
namespace GTools {

namespace {

DialogSeam::Handler &handler()
{
    static DialogSeam::Handler h;
    return h;
}

QMessageBox::Icon iconFor(const QString &kind)
{
    if (kind == QLatin1String("error"))
        return QMessageBox::Critical;
    if (kind == QLatin1String("okcancel") || kind == QLatin1String("yesnocancel"))
        return QMessageBox::Question;
    return QMessageBox::Information;
}

int showRealDialog(const DialogRequest &r)
{
    if (!qobject_cast<QApplication *>(QCoreApplication::instance())) {
        // No widgets to show: say it on standard error and take the last
        // button, which is the safe (cancel) choice of every dialog here.
        std::fprintf(stderr, "%s: %s\n", r.title.toLocal8Bit().constData(),
                     r.text.toLocal8Bit().constData());
        return r.buttons.isEmpty() ? 0 : int(r.buttons.size()) - 1;
    }
    QMessageBox box(iconFor(r.kind), r.title, r.text, QMessageBox::NoButton, getParentWidget());
    if (!r.third.isEmpty())
        box.setInformativeText(r.third);
    std::vector<QAbstractButton *> buttons;
    for (int i = 0; i < r.buttons.size(); ++i) {
        const bool last = i == r.buttons.size() - 1;
        const auto role = (last && r.buttons.size() > 1) ? QMessageBox::RejectRole
                                                         : QMessageBox::AcceptRole;
        buttons.push_back(box.addButton(r.buttons.at(i), role));
    }
    box.exec();
    for (size_t i = 0; i < buttons.size(); ++i)
        if (box.clickedButton() == buttons[i])
            return int(i);
    return buttons.empty() ? 0 : int(buttons.size()) - 1;
}

DialogRequest makeRequest(const char *kind, int type, const QString &title, const QString &text,
                          const QString &third, const QStringList &buttons)
{
    DialogRequest r;
    r.kind = QString::fromLatin1(kind);
    r.type = type;
    r.title = title;
    r.text = text;
    r.third = third;
    r.buttons = buttons;
    return r;
}

} // namespace

QWidget *main_widget = nullptr;

DialogSeam::Handler DialogSeam::setHandler(Handler h)
{
    Handler old = std::move(handler());
    handler() = std::move(h);
    return old;
}

bool DialogSeam::hasHandler()
{
    return bool(handler());
}

int DialogSeam::ask(const DialogRequest &request)
{
    if (handler())
        return handler()(request);
    return showRealDialog(request);
}

ScriptedDialogs::ScriptedDialogs(int defaultAnswer) : _default(defaultAnswer)
{
    _previous = DialogSeam::setHandler([this](const DialogRequest &r) {
        _requests.push_back(r);
        if (_answers.empty())
            return _default;
        const int a = _answers.front();
        _answers.pop_front();
        return a;
    });
}

ScriptedDialogs::~ScriptedDialogs()
{
    DialogSeam::setHandler(std::move(_previous));
}

void ScriptedDialogs::answer(int buttonIndex)
{
    _answers.push_back(buttonIndex);
}

QWidget *getParentWidget()
{
    if (QWidget *modal = QApplication::activeModalWidget())
        return modal;
    if (QWidget *semiModal = SemiModalDialog::current())
        return semiModal;
    return main_widget;
}

void ErrorDialog(const QString &code, const QString &text)
{
    DialogRequest r;
    r.kind = QStringLiteral("error");
    r.code = code;
    r.title = translate("GTools", "error") + QLatin1Char(' ') + code;
    const QString registered = ErrorMessageContainer::getText(code);
    r.text = registered;
    if (!text.isEmpty())
        r.text += (registered.isEmpty() ? QString() : QStringLiteral("\n")) + text;
    r.buttons << translate("GTools", "ok");
    if (ErrorMessageContainer::show_error_text) {
        std::printf("error %s: %s\n", code.toLocal8Bit().constData(),
                    r.text.toLocal8Bit().constData());
        std::fflush(stdout);
    }
    DialogSeam::ask(r);
}

void OkDialog(int type, const QString &title, const QString &text, const QString &third)
{
    DialogSeam::ask(makeRequest("ok", type, title, text, third, {translate("GTools", "ok")}));
}

bool OkCancelDialog(int type, const QString &title, const QString &text, const QString &third,
                    const QString &okText, const QString &cancelText)
{
    return DialogSeam::ask(makeRequest("okcancel", type, title, text, third, {okText, cancelText})) == 0;
}

int YesNoCancelDialog(int type, const QString &title, const QString &text, const QString &third,
                      const QString &button0, const QString &button1, const QString &button2)
{
    const int answer =
        DialogSeam::ask(makeRequest("yesnocancel", type, title, text, third, {button0, button1, button2}));
    return (answer >= 0 && answer <= 2) ? answer : 2;
}

void InfoDialog(const char *id)
{
    const QString key = QString::fromLatin1(id ? id : "");
    if (!InfoMessageContainer::contains(key) || !InfoMessageContainer::isEnabled(key))
        return;
    DialogRequest r;
    r.kind = QStringLiteral("info");
    r.code = key;
    r.title = translate("GTools", "information");
    r.text = InfoMessageContainer::getText(key);
    r.buttons << translate("GTools", "ok") << translate("GTools", "do not show again");
    if (DialogSeam::ask(r) == 1)
        InfoMessageContainer::setEnabled(key, false);
}

bool ErrorMessageContainer::show_error_text = false;
std::map<QString, ErrorMessageContainer::Entry> ErrorMessageContainer::_errors;
QStringList ErrorMessageContainer::_order;

void ErrorMessageContainer::registerError(const char *code, const QString &text,
                                          const QString &textWt)
{
    const QString key = QString::fromLatin1(code ? code : "");
    if (_errors.find(key) == _errors.end())
        _order.append(key);
    _errors[key] = Entry{text, textWt};
}

bool ErrorMessageContainer::contains(const QString &code)
{
    return _errors.find(code) != _errors.end();
}

QString ErrorMessageContainer::getText(const QString &code)
{
    const auto it = _errors.find(code);
    return it == _errors.end() ? QString() : it->second.text;
}

QString ErrorMessageContainer::getTextWt(const QString &code)
{
    const auto it = _errors.find(code);
    return it == _errors.end() ? QString() : it->second.textWt;
}

QStringList ErrorMessageContainer::getCodes()
{
    return _order;
}

void ErrorMessageContainer::deleteAllErrorMessages()
{
    _errors.clear();
    _order.clear();
}

std::map<QString, InfoMessageContainer::Entry> InfoMessageContainer::_infos;

void InfoMessageContainer::registerInfo(const char *id, const QString &text)
{
    const QString key = QString::fromLatin1(id ? id : "");
    auto it = _infos.find(key);
    if (it == _infos.end())
        _infos.emplace(key, Entry{text, true});
    else
        it->second.text = text;
}

bool InfoMessageContainer::contains(const QString &id)
{
    return _infos.find(id) != _infos.end();
}

QString InfoMessageContainer::getText(const QString &id)
{
    const auto it = _infos.find(id);
    return it == _infos.end() ? QString() : it->second.text;
}

bool InfoMessageContainer::isEnabled(const QString &id)
{
    const auto it = _infos.find(id);
    return it != _infos.end() && it->second.enabled;
}

void InfoMessageContainer::setEnabled(const QString &id, bool enabled)
{
    const auto it = _infos.find(id);
    if (it != _infos.end())
        it->second.enabled = enabled;
}

void InfoMessageContainer::deleteAllInfoMessages()
{
    _infos.clear();
}

} // namespace GTools
} // namespace Zal
