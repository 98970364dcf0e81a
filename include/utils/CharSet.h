// Character sets: UTF-8, 16-bit Unicode, UCS-4, code page 936 (GBK, which holds GB 2312) and sets of one byte.
//
//     unsigned short units[64];
//     int count = Gb2312ToUni(text, units, 64);
//     unsigned char utf8[192];
//     int size = utf8_wcstombs(utf8, units, sizeof(utf8));
//
// Three generations stand side by side, each with its own results:
//
// | Group                      | Result                                              | What has no counterpart      |
// |----------------------------|-----------------------------------------------------|------------------------------|
// | unit functions             | bytes read or written                               | -1                           |
// | utf8_ strings              | units or bytes written                              | skipped                      |
// | Gb2312 strings             | told with each; 0 for null or empty                 | -1 on the way out of Unicode |
// | UCS-4                      | bytes written, fewer with a warning                 | skipped                      |
// | sets of one byte           | 0, lengths in the arguments; -1 for bad arguments   | dropped                      |
// | code page 1252             | told with each                                      | told with each               |
//
// Units are 16 bits in the byte order of the machine; characters beyond U+FFFF are not known to the unit functions. Nothing is read or
// written outside what the sizes tell, which are in bytes or, where told, in units. Where no size of a destination is asked for, the caller
// gives the room that is told.
//
// Threads: any thread.
#pragma once

#include "ortha/ortha3/Export.h"

namespace General::Utils {

// One character.

/// A unit as code page 936: 1 or 2 bytes. A unit without page, from 1 to 0xFF, is written as that byte. -1 if it has no counterpart, or
/// `bound` bytes are too few.
ORTHA_API int uni2char(unsigned short uni, unsigned char* out, int bound);
/// A character of code page 936 at the beginning of `bound` bytes: how many it has, 1 or 2. -1 for a pair that is not mapped, and if
/// `bound` is below 1.
ORTHA_API int char2uni(const unsigned char* raw, int bound, unsigned short* uni);
/// A UTF-8 sequence of 1 to 6 bytes at the beginning of `bound` bytes: how many it has. The value is cut to 16 bits. -1 for overlong forms
/// and what is no sequence.
ORTHA_API int utf8_mbtowc(unsigned short* out, const unsigned char* in, int bound);
/// A unit as UTF-8, 1 to 3 bytes. -1 if `bound` bytes are too few; 0 for null.
ORTHA_API int utf8_wctomb(unsigned char* out, unsigned short wc, int bound);
/// The first character of a terminated text, of at most 3 bytes; `length` gets the number that its lead byte tells, 0 if it is none. A
/// sequence that breaks off gives what has been collected so far, or 0 if it ends with the text.
ORTHA_API unsigned short GetUnicodeFromUtf8(const char* text, int* length);

// Texts.

/// UTF-8 to units, up to a zero byte or `bound` bytes. The number of units, for which there must be room: at most `bound`. A byte that
/// begins no sequence is skipped. No terminator.
ORTHA_API int utf8_mbstowcs(unsigned short* out, const unsigned char* in, int bound);
/// Units to UTF-8, up to a zero unit or as long as `bound` bytes last; one that does not fit is skipped and costs one byte of the bound.
/// The number of bytes. No terminator.
ORTHA_API int utf8_wcstombs(unsigned char* out, const unsigned short* in, int bound);

/// A terminated text of code page 936 to at most `count` units, the rest of which are zeroed. The number of units. A pair that is not
/// mapped gives U+FFFD.
ORTHA_API int Gb2312ToUni(char* source, unsigned short* destination, int count);
/// At most `count` units, up to a zero unit, to code page 936 in at most `size` bytes, the rest of which are zeroed. The number of units
/// converted, which is not that of bytes; -1 at the first that has no counterpart.
ORTHA_API int UniTGb2312(unsigned short* source, int count, char* destination, int size);
/// A terminated text of code page 936 to UTF-8 in at most `size` bytes, the rest of which are zeroed. The number of bytes; 0 without
/// memory.
ORTHA_API int Gb2312TUtf8(char* source, unsigned char* destination, int size);
/// UTF-8, up to a zero byte or `sourceSize` bytes, to code page 936. The result is that of UniTGb2312; 0 without memory.
ORTHA_API int utf8TGb2312(unsigned char* source, char* destination, int sourceSize, int destinationSize);

/// Values of 32 bits to UTF-8 of 1 to 6 bytes, by the sizes in bytes; values above 0x7FFFFFFF are skipped. The number of bytes; 0, with a
/// warning, for null and for a length that is no multiple of
/// 4. What does not fit ends the conversion, with a warning. No terminator.
ORTHA_API int UCS4ToUtf8(char* ucs4, int ucs4Length, unsigned char* utf8, int utf8Size);
/// UTF-8 of 1 to 3 bytes to values of 32 bits, by the sizes in bytes. The number of bytes; 0, with a warning, for null. What does not fit,
/// and a sequence that breaks off, end the conversion, with a warning. Continuation bytes are not checked.
ORTHA_API int utf8ToUCS4(char* utf8, int utf8Length, unsigned char* ucs4, int ucs4Size);

// Sets of one byte to UTF-8. On the call the lengths are those of the buffers, in bytes; on return those that were read and written.
// `outLength` is at least `inLength`. 0, or -1, with nothing done, for null, an empty input, or an output that is shorter than the input.
// Bytes that are not mapped, zero among them, are dropped; what does not fit ends the conversion. No terminator.

ORTHA_API int cp862_to_utf8(unsigned char* out, int& outLength, const unsigned char* in, int& inLength);
ORTHA_API int cp874_to_utf8(unsigned char* out, int& outLength, const unsigned char* in, int& inLength);
ORTHA_API int cp1250_to_utf8(unsigned char* out, int& outLength, const unsigned char* in, int& inLength);
ORTHA_API int cp1251_to_utf8(unsigned char* out, int& outLength, const unsigned char* in, int& inLength);
ORTHA_API int iso8859_1_to_utf8(unsigned char* out, int& outLength, const unsigned char* in, int& inLength);
ORTHA_API int iso8859_2_to_utf8(unsigned char* out, int& outLength, const unsigned char* in, int& inLength);
ORTHA_API int iso8859_3_to_utf8(unsigned char* out, int& outLength, const unsigned char* in, int& inLength);
ORTHA_API int iso8859_4_to_utf8(unsigned char* out, int& outLength, const unsigned char* in, int& inLength);
ORTHA_API int iso8859_5_to_utf8(unsigned char* out, int& outLength, const unsigned char* in, int& inLength);
/// The digits 0 to 9 become Arabic-Indic ones.
ORTHA_API int iso8859_6_to_utf8(unsigned char* out, int& outLength, const unsigned char* in, int& inLength);
/// The edition of 1987.
ORTHA_API int iso8859_7_to_utf8(unsigned char* out, int& outLength, const unsigned char* in, int& inLength);
ORTHA_API int iso8859_8_to_utf8(unsigned char* out, int& outLength, const unsigned char* in, int& inLength);
ORTHA_API int iso8859_9_to_utf8(unsigned char* out, int& outLength, const unsigned char* in, int& inLength);
ORTHA_API int iso8859_10_to_utf8(unsigned char* out, int& outLength, const unsigned char* in, int& inLength);
ORTHA_API int iso8859_13_to_utf8(unsigned char* out, int& outLength, const unsigned char* in, int& inLength);
ORTHA_API int iso8859_14_to_utf8(unsigned char* out, int& outLength, const unsigned char* in, int& inLength);
ORTHA_API int iso8859_15_to_utf8(unsigned char* out, int& outLength, const unsigned char* in, int& inLength);
ORTHA_API int iso8859_16_to_utf8(unsigned char* out, int& outLength, const unsigned char* in, int& inLength);

/// Code page 1252 to UTF-8. From the first undefined byte on (0x81, 0x8D, 0x8F, 0x90, 0x9D) each byte gives a zero byte. 0 if all fits;
/// else nothing is written and the result is the room that is needed.
/// -1 for null and for an empty input. The length written is not told.
ORTHA_API int cp1252_to_utf8(unsigned char* out, int outSize, const unsigned char* in, int inLength);
/// UTF-8 to code page 1252. The number of bytes. A character that the set lacks is lost; what is no sequence, and an output that is full,
/// end the conversion.
ORTHA_API int utf8_to_cp1252(const unsigned char* in, int inLength, unsigned char* out, int outSize);

}  // namespace General::Utils
