package vesk.tests;

/**
 * The least a stable interface can be: the floor of a call over the platform's binder, and what
 * the tests of the host's registration seam ask of a server.
 */
@VintfStability
interface IPing {
    /** Returns value. */
    int ping(int value);

    /** Does nothing: the cost of a call alone. */
    void pingEmpty();

    /** Writes "waiting" to the server's standard output, then returns after milliseconds. */
    void waitFor(int milliseconds);

    /** The number of bytes of data. */
    int byteCount(in byte[] data);

    /**
     * Returns count once count callers are inside at once, or, after timeoutMs, the number of
     * callers inside then.
     */
    int meet(int count, int timeoutMs);
}
