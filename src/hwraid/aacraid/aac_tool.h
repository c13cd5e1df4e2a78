// SPDX-License-Identifier: Apache-2.0
// One run of the controller vendor's command-line tool: a script on its standard input, its output through
// the site's filter script. Every operation of the hardware side is such a run:
//
//   ToolScript script(lpszControllerName);
//   script.Add("disk show partition\n ... exit\n");
//   const ToolRun run(script, DISK_TRACES);
//   return run.Answer() ? AnalyzePartitionFile(run.Answer(), pHead) : AAC_RUN_FAILED;
#ifndef DISKSCOUT_HWRAID_AAC_TOOL_H
#define DISKSCOUT_HWRAID_AAC_TOOL_H

#include <stddef.h>

// The commands of one run, put together piece by piece.
class ToolScript
{
public:
	ToolScript() { m_szText[0] = '\0'; }
	// Opens the controller first.
	explicit ToolScript(const char *lpszControllerName) : ToolScript()
	{
		Add("open %s\n", lpszControllerName);
	}
	__attribute__((format(printf, 2, 3))) void Add(const char *lpszFormat, ...);
	void AddAddress(int nC_ID_L); // "(channel,ID,LUN)", decimal
	// False once something did not fit: such a script is never run.
	bool Fits() const { return m_nLength < sizeof m_szText; }
	const char *Text() const { return m_szText; }

private:
	char m_szText[8192];
	size_t m_nLength = 0;
};

// What the debug trace says when a run fails; each family of operations has words of its own.
struct ToolTraces {
	void (*pfnCommandFailed)(int nStatus, const char *lpszCommand);
	void (*pfnAnswerMissing)(const char *lpszFile);
};

// Those of the operations on containers.
extern const ToolTraces COMMAND_TRACES;

// Runs the script when it is made, and blocks until tool and filter have ended. Its files, in the working
// directory, are gone when it ends, whatever the outcome.
class ToolRun
{
public:
	ToolRun(const ToolScript &script, const ToolTraces &traces);
	~ToolRun();
	ToolRun(const ToolRun &) = delete;
	ToolRun &operator=(const ToolRun &) = delete;

	// The filtered output, a file that stands as long as the run. Null when the run failed: the script
	// does not fit or cannot be written, tool or filter fail or the configuration names none, or there is
	// no such file.
	const char *Answer() const { return m_bAnswered ? m_szFiltered : nullptr; }

private:
	bool Run(const ToolScript &script);
	bool WriteScript(const char *lpszScript);
	bool RunTool() const;
	bool RunFilter() const;
	bool HasAnswer() const;

	const ToolTraces &m_traces;
	char m_szScript[256] = "";
	char m_szRaw[256] = "";
	char m_szFiltered[256] = "";
	bool m_bScriptMade = false; // else there is nothing to remove
	bool m_bRun = false;        // else no more than the script
	bool m_bAnswered = false;
};

// Removes a file through the shell. 0, or -1 when the command fails.
int DeleteFileWindowsAndLinux(const char *lpszPath);

#endif
