#include "gapp_status_data.h"
#include "zal_errorlog.h"

namespace Zal {
namespace GApp {

namespace {
// "command not allowed in this application mode": what a type answers for an
// operation it does not offer.
bool notInThisMode(QString *errorCode)
{
    if (errorCode)
        *errorCode = QStringLiteral("GAPP-0016");
    return false;
}
} // namespace

StatusData::StatusData(unsigned int localMode, const QString &standardView)
    : _local_mode(localMode), _standard_view(standardView)
{
}

StatusData::~StatusData() = default;

QString StatusData::getLocalModeName()
{
    return QString();
}

void StatusData::beforeModeChange(unsigned int)
{
}

void StatusData::afterModeChange(unsigned int)
{
}

bool StatusData::cleanupInconsistentState()
{
    return true;
}

std::vector<QString> StatusData::getAllFileNameExtensions()
{
    return {};
}

bool StatusData::getSelectedDataName(QString *, bool *) const
{
    return false;
}

QString StatusData::getFileName(const QString &)
{
    return QString();
}

bool StatusData::isFileNameValid(const QString &) const
{
    return false;
}

QString StatusData::getFileNameExtension(const std::vector<QString> &names)
{
    return names.empty() ? QString() : getFileNameExtension(names.front());
}

QString StatusData::getFileNameExtension(const QString &)
{
    return QString();
}

bool StatusData::canOpenFile(const std::vector<char> &)
{
    return false;
}

bool StatusData::canOpenImage() const
{
    return false;
}

bool StatusData::openFile(const QString &, QString *, QString *, ErrorLog *)
{
    return false;
}

bool StatusData::isSaveSensitive() const
{
    return false;
}

bool StatusData::saveFile(const QString &, const QString &, QString *errorCode, ErrorLog *)
{
    return notInThisMode(errorCode);
}

bool StatusData::isSaveAsSensitive() const
{
    return false;
}

bool StatusData::isExportC3DSensitive() const
{
    return false;
}

bool StatusData::isSaveProjectAsSensitive() const
{
    return false;
}

bool StatusData::saveFileAs(const std::vector<QString> &, const QString &, RenameType_t,
                            QString *errorCode, ErrorLog *)
{
    return notInThisMode(errorCode);
}

bool StatusData::saveFileAsRecent(const std::vector<QString> &names, const QString &fileName,
                                  RenameType_t rename, QString *recentName, QString *errorCode,
                                  ErrorLog *log)
{
    if (recentName)
        *recentName = fileName;
    return saveFileAs(names, fileName, rename, errorCode, log);
}

bool StatusData::isCloseSensitive() const
{
    return false;
}

bool StatusData::closeData(const std::vector<QString> &, QString *errorCode, ErrorLog *)
{
    return notInThisMode(errorCode);
}

bool StatusData::isCopyToClipboardSensitive() const
{
    return false;
}

bool StatusData::copyToClipboard(const std::vector<QString> &, const std::vector<QString> &,
                                 QString *errorCode, ErrorLog *) const
{
    return notInThisMode(errorCode);
}

bool StatusData::canPasteFromClipboard(const std::vector<char> &)
{
    return false;
}

bool StatusData::pasteFromClipboard(const std::vector<QString> &, const std::vector<QString> &,
                                    QString *, QString *errorCode, ErrorLog *)
{
    return notInThisMode(errorCode);
}

StatusData::StageActive_t StatusData::isStageActive(const QString &)
{
    return STAGE_UNKNOWN;
}

std::vector<QString> StatusData::getStageLoopStages(const QString &, StageLoopStage_t)
{
    return {};
}

StageIdentifier StatusData::getActualStageIdentifier()
{
    return StageIdentifier::NO_STAGE;
}

std::vector<int> StatusData::getStageNumbers(QString, ExplorerPosition_t, int)
{
    return {};
}

bool StatusData::checkMagicHeader(const std::vector<char> &firstBytes, const QString &magic) const
{
    if (firstBytes.size() < static_cast<size_t>(magic.size()))
        return false;
    for (qsizetype i = 0; i < magic.size(); ++i)
        if (QChar::fromLatin1(firstBytes[static_cast<size_t>(i)]) != magic.at(i))
            return false;
    return true;
}

ItemIndex::ItemIndex(unsigned int index) : _type(BY_INDEX), _index(index)
{
}

ItemIndex::ItemIndex(const QString &name) : _type(BY_NAME), _name(name)
{
}

ItemIndex::ItemIndex(const std::vector<int> &tuple) : _type(BY_TUPLE), _tuple(tuple)
{
}

ObjectPointAdditionalData::~ObjectPointAdditionalData() = default;

ObjectPointDescriptor::ObjectPointDescriptor(const BaPoint3d<double> &p, const QString &n,
                                             const BaVec3d<double> &nv, bool f)
    : point(p), name(n), normal(nv), flag(f)
{
}

void ObjectPointDescriptor::setAdditionalData(Type_t type, ObjectPointAdditionalData *data)
{
    additional_type = type;
    additional_data = data;
}

ExitNotifier::~ExitNotifier() = default;

} // namespace GApp
} // namespace Zal
