#include "persist/SerialForms.h"

#include "foundation/VXODateTime.h"
#include "persist/ArchiveB.h"
#include "persist/ArchiveX.h"
#include "persist/SerObject.h"
#include "platform/Errors.h"

namespace vx::serial {

int32_t LoadElementCount(CArchiveX &ar, const CVXString &name) {
    int32_t count = 0;
    ar.Load(name, count);
    if (count < 0) ThrowNullInterface();
    if (count == 0) return 0;
    CVXComWrap<IDomNodeList> children(ar.GetCurrent()->Children());
    if (children->Count() < count) ThrowNullInterface();
    return count;
}

int32_t LoadAttributeCount(CArchiveX &ar, const CVXString &name, const CVXString &prefix) {
    int32_t count = 0;
    ar.Load(name, count);
    if (count < 0 || (count > 0 && !ar.AttributeExists(CArchiveX::ToName(prefix, count - 1))))
        throw CVXComError(E_INVALIDARG, __FILE__, __LINE__,
                          CVXString(u"the count under ") + name +
                              u" is larger than the attributes that follow it");
    return count;
}

void SaveRunElement(CArchiveX &ar, const CVXString &name, const ISerObject *object) {
    if (object)
        ar.Save(name, object);
    else
        ar.AppendChild(name);
}

CSerObject *AsSerObjectB(CArchiveB &ar, ISerObject *object) {
    return CSerObjectRun().AsSerObjectB(ar, object);
}

CSerObject *AsSerObjectX(ISerObject *object) {
    return CSerObjectRun().AsSerObjectX(object);
}

CSerObject *CSerObjectRun::Checked(ISerObject *object) {
    const CRuntimeCreator *creator = object->RuntimeCreator();
    if (creator && creator == m_pChecked) return static_cast<CSerObject *>(object);
    auto *checked = dynamic_cast<CSerObject *>(object);
    if (checked && creator) m_pChecked = creator;
    return checked;
}

CSerObject *CSerObjectRun::AsSerObjectB(CArchiveB &ar, ISerObject *object) {
    if (!object) return nullptr;
    if (CSerObject *o = Checked(object)) return o;
    delete object;
    throw CArchiveBException(CArchiveBException::badClass, ar.GetFileName());
}

CSerObject *CSerObjectRun::AsSerObjectX(ISerObject *object) {
    if (!object) return nullptr;
    if (CSerObject *o = Checked(object)) return o;
    delete object;
    return nullptr;
}

} // namespace vx::serial

namespace vx {

// The date's binary form lives with the archive: dates sit below persistence.
// The status as a 32-bit long, then the value.
void CVXODateTime::SerializeB(CArchiveB &ar) {
    if (ar.IsStoring()) {
        ar << static_cast<int32_t>(m_status) << m_dt;
        return;
    }
    int32_t status = 0;
    ar >> status >> m_dt;
    m_status = static_cast<DateTimeStatus>(status);
}

} // namespace vx
