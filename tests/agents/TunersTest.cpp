// agents/TunersTest.cpp
//
// What all classes have in common, and the tuners without a function.

#include "agents/AgentsTest.h"

#include "agents/BatAgent.h"
#include "agents/CpuAgent.h"
#include "agents/DevMgr.h"
#include "agents/DisplayAgent.h"
#include "agents/DspxAgent.h"
#include "agents/EblTuner.h"
#include "agents/EcAgent.h"
#include "agents/HwSBX.h"
#include "agents/LanAgent.h"
#include "foundation/OrvlProfile.h"

namespace
{

using TunersTest = AgentsTest;

TEST_F(TunersTest, EveryClassTellsTheSameVersion)
{
    EXPECT_THAT((std::array{CBatAgent().GetVersion(), CCpuAgent().GetVersion(), CDevMgr().GetVersion(),
                            CDisplayAgent().GetVersion(), CDspxAgent().GetVersion(), CEblTuner().GetVersion(),
                            CEcAgent().GetVersion(), CHwSBX().GetVersion(), CHwXA().GetVersion(),
                            CLanAgent().GetVersion(), CORVLCfg().GetVersion(), CORVLProfile().GetVersion()}),
                testing::Each(1000U));
}

TEST_F(TunersTest, WithoutAFunctionAnswerTheirConstants)
{
    EXPECT_THAT((std::array{CEblTuner().GetEblLevel(), CEblTuner().SetEblLevel(5), CLanAgent().GetEblLevel(),
                            CLanAgent().SetEblLevel(5)}),
                testing::Each(0));
    EXPECT_THAT((std::array{CDisplayAgent().GetEblLevel(), CDisplayAgent().SetEblLevel(5)}),
                testing::Each(-1));
    EXPECT_THAT((std::array{CEblTuner().CheckSupportStatus(), CDisplayAgent().CheckSupportStatus(),
                            CLanAgent().CheckSupportStatus()}),
                testing::Each(0U));
}

} // namespace
