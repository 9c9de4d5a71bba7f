#include "qzxmllib/binding/SharedText.h"

#include <new>
#include <utility>

namespace QzXmlLib16
{

namespace
{

/// An object that is made without the heap and never destroyed: objects may outlive the static objects of the library.
template <class T>
class CEternal
{
public:
    template <class... Args>
    explicit CEternal(Args &&... args) noexcept
    {
        new (m_abyStorage) T{std::forward<Args>(args)...};
    }
    T & Get() noexcept { return *std::launder(reinterpret_cast<T *>(m_abyStorage)); }

private:
    alignas(T) unsigned char m_abyStorage[sizeof(T)];
};

} // namespace

CSharedText::CSharedText(std::u16string const & strText) : m_pBody(strText.empty() ? nullptr : new Body{strText}) {}

void CSharedText::Release() noexcept
{
    if (m_pBody->nHolders.fetch_sub(1, std::memory_order_acq_rel) == 1)
        delete m_pBody;
}

std::u16string const & CSharedText::Empty() noexcept
{
    static CEternal<std::u16string> s_empty;
    return s_empty.Get();
}

CSharedText CSharedText::Any() noexcept
{
    // The string is short enough to need no heap.
    static CEternal<Body> s_any(u"##any", 1u, true);
    return CSharedText(&s_any.Get());
}

} // namespace QzXmlLib16
