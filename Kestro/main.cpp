// Kestro desktop. Everything lives in the app library; see shell/KestroApp.
#include "shell/KestroApp.h"

int main(int argc, char** argv)
{
    return Kestro::KestroApp::main(argc, argv);
}
