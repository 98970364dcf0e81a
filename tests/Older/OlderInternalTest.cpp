#include <gtest/gtest.h>

#include "ortha/Version.h"

#include "Src/VersionList.h"

TEST(OlderVersion, StampsOfANameAreFoundWhateverItsCaseAndAllCount)
{
    const CVersion low("Doors", 1, 4, 0, "", ""), other("doorS2", 0, 0, 0, "", "");
    EXPECT_TRUE(isVersionAtLeast("DOORS", 1, 4, 0) && isVersionAtLeast("doors", 0, 5, 5) && isVersionAtLeast("absent", 9, 9, 9));
    EXPECT_FALSE(isVersionAtLeast("doors", 1, 4, 1) || isVersionAtLeast("doors", 1, 5, 0) || isVersionAtLeast("doors", 2, 0, 0));
    EXPECT_TRUE(isVersionSame("dOORS", 1, 4, 0) && isVersionSame("absent", 9, 9, 9) && isVersionSame("ortha2", 1, 0, 0));
    const CVersion high("DOORS", 1, 5, 0, "", "");
    EXPECT_FALSE(!isVersionAtLeast("doors", 1, 4, 0) || isVersionAtLeast("doors", 1, 5, 0) || isVersionSame("doors", 1, 5, 0));
}
