// SPDX-License-Identifier: Apache-2.0
#include "hwraid/aacraid/aac_output.h"

#include "hwraid/aacraid/aac_error.h"
#include "hwraid/aacraid/aac_text.h"

#include <new>
#include <string.h>
#include <sys/stat.h>

ToolOutput::ToolOutput(const char *lpszFile) : m_pFile(fopen(lpszFile, "rte"))
{
	m_szLine[0] = '\0';
}

ToolOutput::~ToolOutput()
{
	if (m_pFile)
		fclose(m_pFile);
}

bool ToolOutput::Read()
{
	const bool bRead = fgets(m_szLine, sizeof m_szLine, m_pFile) != nullptr;
	if (!bRead)
		m_szLine[0] = '\0';
	CutOffHeaderString(m_szLine, PAGER_PROMPT, " \t", 1);
	return bRead;
}

bool FindEcho(ToolOutput *pOutput, const char *lpszEcho, int *pnError)
{
	*pnError = 0;
	while (pOutput->Next()) {
		if (Including(pOutput->Line(), lpszEcho))
			return true;
		if (Including(pOutput->Line(), "Command Error")) {
			*pnError = CodeOfErrorLine(pOutput->Line());
			return false;
		}
	}
	return false;
}

bool ToolTable::Next()
{
	while (m_pOutput->Next()) {
		const char *lpszLine = m_pOutput->Line();
		if (Including(lpszLine, "----"))
			m_bInTable = true;
		else if (m_bInTable)
			return !Including(lpszLine, "CLI") && lpszLine[0] != '\n';
	}
	return false;
}

static constexpr off_t MAX_CONTENT = 0x100000;

char *Get_Content_Of_The_File(const char *lpszPath)
{
	struct stat status;
	if (stat(lpszPath, &status) != 0 || status.st_size == 0 || status.st_size > MAX_CONTENT)
		return nullptr;
	FILE *pFile = fopen(lpszPath, "re");
	if (!pFile)
		return nullptr;
	const auto nSize = static_cast<size_t>(status.st_size);
	char *lpszText = new (std::nothrow) char[nSize + 1];
	if (lpszText)
		lpszText[fread(lpszText, 1, nSize, pFile)] = '\0';
	fclose(pFile);
	return lpszText;
}
