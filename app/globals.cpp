#include "app/globals.h"

char gBundlePath[1024] = {};
bool isNetworkOnline = true;
