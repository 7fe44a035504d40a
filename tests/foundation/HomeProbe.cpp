// Writes the home directory of the program, wherever a test has put it.
#include <ZVLib.h>

#include <cstdio>

int main()
{
    char* home = FindHomeDirZV();
    std::fputs(home, stdout);
    FreeFileSpecZV(home);
}
