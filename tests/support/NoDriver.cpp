// A library that lacks the one function that makes it a driver.

extern "C" __attribute__((visibility("default"))) int HarmonetNoDriver()
{
    return 0;
}
