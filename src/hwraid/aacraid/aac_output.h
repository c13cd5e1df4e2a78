// SPDX-License-Identifier: Apache-2.0
// Files of tool output, as the parsers read them.
#ifndef DISKSCOUT_HWRAID_AAC_OUTPUT_H
#define DISKSCOUT_HWRAID_AAC_OUTPUT_H

#include <stdio.h>

// Printed without a line end before the next line's text, wherever the tool's screen was full.
constexpr char PAGER_PROMPT[] =
	"( <SPACEBAR>:next screen, <Enter>:next line, <C>:Continous, <Q>:Quit Early )";

// A file of tool output, line by line. A line beyond 511 characters goes on as the next one. Of every line
// the pager prompt at its start and the blanks and tabs that then lead it are cut off.
class ToolOutput
{
public:
	explicit ToolOutput(const char *lpszFile);
	~ToolOutput();
	ToolOutput(const ToolOutput &) = delete;
	ToolOutput &operator=(const ToolOutput &) = delete;

	bool IsOpen() const { return m_pFile != nullptr; }
	// False at the end of the output.
	bool Read();
	// False also at a line that is cleaned to nothing, where most tables end: a bare newline is
	// something.
	bool Next() { return Read() && m_szLine[0] != '\0'; }
	char *Line() { return m_szLine; }

private:
	FILE *m_pFile;
	char m_szLine[512];
};

// Reads up to the echo of the command. False when the output ends before it, or has a "Command Error", whose
// code *pnError then is.
bool FindEcho(ToolOutput *pOutput, const char *lpszEcho, int *pnError);

// The rows of a table: what stands between its dashed rule and the blank line or the prompt behind it.
class ToolTable
{
public:
	explicit ToolTable(ToolOutput *pOutput) : m_pOutput(pOutput) {}
	bool Next(); // the row is the output's line

private:
	ToolOutput *m_pOutput;
	bool m_bInTable = false;
};

// A file's text, ended by a NUL; the caller frees it with delete[]. Null when the file is missing, empty or
// larger than 1,048,576 bytes.
char *Get_Content_Of_The_File(const char *lpszPath);

#endif
