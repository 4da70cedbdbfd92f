#include "config/config_files.h"

namespace twr::testing {
namespace {

using namespace std::string_literals;
using AlternatesFileTest = ConfigFilesTest;

TEST_F(AlternatesFileTest, TakesWhatCounts) {
    Check("alternate.csv", "",
          {
              {"commas", "3,13,14,0,0,0,0,0,0,0\n", "3:1314------- "},
              {"tabs and blanks", " 3 \t13 14\t\t0 0 0 0 0 0 0\n", "3:1314------- "},
              {"commas and blanks before the numbers", " 3, 13,\t14, 0, 0, 0, 0, 0, 0, 0\n", "3:1314------- "},
              {"blanks before the commas", "3 ,13 ,14 ,0 ,0 ,0 ,0 ,0 ,0 ,0\n", ""},
              {"commas that end early", "3,13,14,0,0 0 0 0 0 0\n", ""},
              {"all slots and the rows' bounds", "0,1,2,3,4,5,6,7,8,9\n9,9,8,7,6,5,4,3,2,1\n", "0:123456789 9:987654321 "},
              {"eight and nine fields", "3,13,14,0,0,0,0,12\n3,13,14,0,0,0,0,0,12\n", "3:1314-----12- "},
              {"nine fields by blanks", "3 13 14 0 0 0 0 0 12\n", "3:1314-----12- "},
              {"more than ten fields", "3,1,2,3,4,5,6,7,8,9,10 upwind\n", "3:123456789 "},
              {"text in the tenth field", "3,1,2,3,4,5,6,7,8,x\n", "3:12345678- "},
              {"text in an earlier field", "3,1,2,x,4,5,6,7,8,9\n3,13.5,14,0,0,0,0,0,0,0\n", ""},
              {"rows out of range", "10,1,2,3,4,5,6,7,8,9\n-1,1,2,3,4,5,6,7,8,9\n99999999999999999999,1,2,3,4,5,6,7,8,9\n", ""},
              {"a row number beyond 32 bits", "4294967299,1,2,3,4,5,6,7,8,9\n", "3:123456789 "},
              {"values at their bounds", "3,414,413,1,0,-1,-2,32767,-32768,126\n", "3:-4131-----126 "},
              {"values beyond 16 bits", "3,65549,-65523,32768,65536,99999999999999999999,4294967309,0,0,0\n", "3:1313---13--- "},
              {"signs", "+3,+13,-14,0,0,0,0,0,0,0\n", "3:13-------- "},
              {"a later line keeps what it carries no value for", "3,1,2,3,4,5,6,7,8,9\n3,13,0,-1,414,0,0,0,0,20\n",
               "3:13234567820 "},
              {"comments and empty lines", "!3,1,2,3,4,5,6,7,8,9\n\n! row, slots\n4,13,14,0,0,0,0,0,0,0\r\n\n", "4:1314------- "},
              {"a blank before the exclamation mark", " !3,1,2,3,4,5,6,7,8,9\n", ""},
              {"a mark spoils the first line", "\uFEFF3,13,14,0,0,0,0,0,0,0\n4,13,14,0,0,0,0,0,0,0", "4:1314------- "},
              {"a zero byte ends its line", "3,13,14,0,0,0,0,0\0,5,6\n4,13,14,0,0,0,0,0,0,0\n"s, "4:1314------- "},
          });
}

}  // namespace
}  // namespace twr::testing
