// The commands of zvclip. Each takes the words behind its name and returns the exit status.
#pragma once

int Run_Info(int argc, char** argv);
int Run_Convert(int argc, char** argv);
int Run_Composite(int argc, char** argv);
int Run_Extract(int argc, char** argv);
int Run_Frame(int argc, char** argv);
int Run_Sound(int argc, char** argv);
int Run_Check(int argc, char** argv);

extern char const* const infoHelp;
extern char const* const convertHelp;
extern char const* const compositeHelp;
extern char const* const extractHelp;
extern char const* const frameHelp;
extern char const* const soundHelp;
extern char const* const checkHelp;
