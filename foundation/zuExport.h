// zuExport.h - marks what the shared libraries export. Group: values.
#pragma once

/// On every class and function that a client may use; everything else has hidden visibility.
#define ZU_API __attribute__((visibility("default")))
