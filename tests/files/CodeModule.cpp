// Code modules for the tests. Each is a build of this file with another set of functions in it.
extern "C" {

#ifdef ZV_TEST_ENTRY
__attribute__((visibility("default"))) int ZV_TEST_ENTRY()
{
    static int calls = 0;
    return ++calls;
}
#endif

#ifdef ZV_TEST_UNDEFINED
int Nobody_Defines_This();
__attribute__((visibility("default"))) int Calls_It()
{
    return Nobody_Defines_This();
}
#endif
}
