#pragma once

#include "Prompts.h"

// The hourglass for the length of a routine: shown at its start, the normal pointer on every way out.
// A routine that must leave the hourglass up on one path calls keep() there.
class BusyPointer
{
public:
    explicit BusyPointer(Prompts &prompts) : m_prompts(prompts) { m_prompts.setBusy(true); }
    ~BusyPointer()
    {
        if (!m_kept)
            m_prompts.setBusy(false);
    }
    BusyPointer(const BusyPointer &) = delete;
    BusyPointer &operator=(const BusyPointer &) = delete;

    void keep() { m_kept = true; }

private:
    Prompts &m_prompts;
    bool m_kept = false;
};
