#pragma once

class CommControl;

// The one owner of the port's mode. While a claim lives, the program reads and writes the port
// itself (AutoProcess 0) and the terminal neither shows nor consumes what arrives. When the claim
// ends, the port goes back as the claim was told: to the mode it was found in (a routine that
// borrows the port), or to the terminal (a screen that talks to the modem, when it unloads).
class PortClaim
{
public:
    enum class Then { Restore, Terminal };

    explicit PortClaim(CommControl &comm, Then then = Then::Restore);
    ~PortClaim();
    PortClaim(const PortClaim &) = delete;
    PortClaim &operator=(const PortClaim &) = delete;

    // Ends the claim now, handing the port back as the claim was told.
    void release();
    // Ends the claim with the port left in the program's hands.
    void keep();

    // The two hand-overs that belong to no claim: a wait for a reply takes the port for the program
    // and leaves it there; showing the terminal gives it to the terminal.
    static void takeForProgram(CommControl &comm);
    static void giveToTerminal(CommControl &comm);

private:
    CommControl *m_comm;
    int m_found;
    Then m_then;
};
