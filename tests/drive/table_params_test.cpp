#include "drive/table_params.h"

#include <gtest/gtest.h>

namespace tavrik {
namespace {

TEST(TableParams, StartAsANewObjectDoes) {
    const TableParams params(*FindParamTable("Tavrik"));
    EXPECT_EQ(params.GetFloat(MasterParam::Gravity), 980.0f);
    EXPECT_EQ(params.GetInt(MasterParam::Sample_Step), 30);
    EXPECT_EQ(params.GetInt(MasterParam::Bike_Drive), 0);
}

TEST(TableParams, KeepWhatIsSetUnclamped) {
    TableParams params(*FindParamTable("Tavrik"));
    params.SetInt(MasterParam::CtrlJoyForward, 1 << 20);
    params.SetFloat(MasterParam::Gravity, -5.0f);
    EXPECT_EQ(params.GetInt(MasterParam::CtrlJoyForward), 1 << 20);
    EXPECT_EQ(params.GetFloat(MasterParam::Gravity), -5.0f);
}

}  // namespace
}  // namespace tavrik
