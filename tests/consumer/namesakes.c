/* Another library of the process that stands in for the same functions of the system. None of these may be called: a
   call means that the two libraries interfere with each other. */
#include <stdlib.h>

void* SysAllocString(void) { abort(); }
void* SysAllocStringLen(void) { abort(); }
void SysFreeString(void) { abort(); }
unsigned SysStringLen(void) { abort(); }
int SetErrorInfo(void) { abort(); }
int GetErrorInfo(void) { abort(); }
int CLSIDFromProgID(void) { abort(); }
int CoCreateInstance(void) { abort(); }
int CoGetClassObject(void) { abort(); }
