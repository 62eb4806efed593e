// ole32/PanelBridgeTest.cpp
//
// The panel bridge through its slots, as a caller sees them that knows nothing else of it.

#include "notebook/Graphics.h"
#include "notebook/Machine.h"
#include "support/NotebookTest.h"

#include <objbase.h>

#include <cstring>

namespace
{

using namespace simulated;

constexpr IID kInterface = {0xAFB6489F, 0x4515, 0x44AA, {0x8D, 0xF7, 0xED, 0x28, 0xEA, 0x46, 0x28, 0x3C}};
constexpr GUID kFrqg = {0x8A2A926D, 0xFF9D, 0x4737, {0x93, 0x5B, 0x96, 0xBF, 0x28, 0x80, 0x5B, 0x73}};
constexpr GUID kAbr = {0x2B3C5F6C, 0x97B7, 0x4C85, {0xB4, 0xF2, 0x33, 0x57, 0x19, 0xD2, 0x4F, 0x3D}};

constexpr unsigned kOpen = 20;
constexpr unsigned kClose = 21;
constexpr unsigned kGetPolicy = 23;
constexpr unsigned kSetPolicy = 24;

} // namespace

class PanelBridgeTest : public NotebookTest
{
protected:
    void SetUp() override
    {
        NotebookTest::SetUp();
        CoInitializeEx(nullptr, 0);
        CLSID classId = {};
        ASSERT_EQ(S_OK, CLSIDFromProgID(L"Pixlink.PanelBridge", &classId));
        ASSERT_EQ(S_OK, CoCreateInstance(classId, nullptr, CLSCTX_SERVER, kInterface, &m_object));
    }
    void TearDown() override
    {
        static_cast<IUnknown*>(m_object)->Release();
        CoUninitialize();
        EXPECT_EQ(0U, Graphics::LiveObjects());
        NotebookTest::TearDown();
    }

    template <class... Arguments>
    HRESULT Call(unsigned slot, Arguments... arguments)
    {
        using Function = HRESULT(STDMETHODCALLTYPE*)(void*, Arguments...);
        void** const table = *static_cast<void***>(m_object);
        return reinterpret_cast<Function>(table[slot])(m_object, arguments...);
    }

    HRESULT Get(ULONG number, GUID id, ULONG size)
    {
        std::memset(record, 0xCC, sizeof record);
        return Call(kGetPolicy, handle, number, &id, size, static_cast<void*>(record), &driverError);
    }

    ULONG handle = 0;
    ULONG driverError = 0xCCCC;
    DWORD record[5] = {};

private:
    void* m_object = nullptr;
};

TEST_F(PanelBridgeTest, PoliciesAreReadAndWrittenWithAnOpenHandle)
{
    EXPECT_EQ(E_NOTIMPL, Call(3));
    EXPECT_EQ(E_NOTIMPL, Call(19));
    EXPECT_EQ(HRESULT_FROM_WIN32(ERROR_INVALID_HANDLE), Get(1, kFrqg, 4));
    ASSERT_EQ(S_OK, Call(kOpen, &handle, &driverError));

    EXPECT_EQ(S_OK, Get(1, kFrqg, 4));
    EXPECT_EQ(1U, record[0]);
    EXPECT_EQ(0xCCCCCCCCU, record[1]); // not a byte behind the record
    const DWORD written[5] = {1, 1, 0, 0, 0};
    std::memcpy(record, written, sizeof record);
    EXPECT_EQ(S_OK,
              Call(kSetPolicy, handle, ULONG{3}, &kAbr, ULONG{20}, static_cast<void*>(record), &driverError));
    EXPECT_EQ("0x00000001 0x00000001 0x00000000 0x00000000 0x00000000", Machine::Read("Graphics", "ABR"));
    EXPECT_EQ(S_OK, Get(3, kAbr, 20));
    EXPECT_EQ(0, std::memcmp(written, record, sizeof record));

    EXPECT_EQ(E_INVALIDARG, Get(3, kAbr, 4));
    EXPECT_EQ(S_OK, Get(2, kAbr, 20)); // number and id don't belong together
    EXPECT_EQ(Graphics::kPolicyNotSupported, driverError);

    EXPECT_EQ(1U, Graphics::OpenPowerHandles());
    EXPECT_EQ(S_OK, Call(kClose, handle, &driverError));
    EXPECT_EQ(0U, Graphics::OpenPowerHandles());
    EXPECT_EQ(HRESULT_FROM_WIN32(ERROR_INVALID_HANDLE), Call(kClose, handle, &driverError));
}
