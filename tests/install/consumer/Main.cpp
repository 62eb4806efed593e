// install/consumer/Main.cpp
//
// Makes an object of every exported class, copies and assigns it, and gets its version through the base
// class.

#include "agents/BatAgent.h"
#include "agents/CpuAgent.h"
#include "agents/DevMgr.h"
#include "agents/DisplayAgent.h"
#include "agents/DspxAgent.h"
#include "agents/EblTuner.h"
#include "agents/EcAgent.h"
#include "agents/HwSBX.h"
#include "agents/LanAgent.h"
#include "agents/OrvlDrvMgr.h"
#include "agents/OsWin.h"
#include "foundation/InterProcessBoard.h"
#include "foundation/OrvlProfile.h"
#include "plugin/PluginHelper.h"
#include "scheme/SchemeEx.h"

#include <cstdio>
#include <type_traits>

namespace
{

template <class Class>
int Failures()
{
    Class original;
    Class copy(original);
    copy = original;
    CORVLBase& base = copy;
    return base.GetVersion() == 1000 ? 0 : 1;
}

template <class... Classes>
int AllFailures()
{
    return (Failures<Classes>() + ...);
}

} // namespace

int main()
{
    static_assert(std::is_abstract_v<CORVLBase> && std::is_abstract_v<COsWin>);
    static_assert(std::is_base_of_v<CHwXA, CHwSBX> && std::is_base_of_v<CORVLCfg, CORVLProfile>);
    static_assert(std::is_copy_assignable_v<CInterProcessBoard> &&
                  std::is_default_constructible_v<CPluginHelper>);
    const CInterProcessBoard board;
    const int failures = AllFailures<CBatAgent, CCpuAgent, CORVLCfg, CORVLProfile, CDevMgr, CDisplayAgent,
                                     CDspxAgent, CEblTuner, CEcAgent, CHwXA, CHwSBX, CLanAgent, CSchemeEx>();
    std::printf("%d of the exported classes give another version\n", failures);
    return failures == 0 && OrvlDrvClose() == 0 ? 0 : 1;
}
